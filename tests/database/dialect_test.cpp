#include "platform/database/sqlite/dialect.h"

#include "case_table.h"
#include "database/project_fixture.h"

namespace generalutilities {
namespace {

using sqlite::Translate;
using sqlite::Translation;

class Dialect : public ProjectTest {};

TEST(DialectText, QueriesThatDifferInLiteralsHaveOneText) {
    Translation first;
    Translation second;
    std::string problem;
    ASSERT_TRUE(Translate(u"SELECT ID FROM Pairs WHERE Source2Index = 'a''b' AND Done = 0", first,
                          problem));
    ASSERT_TRUE(
        Translate(u"select ID  FROM Pairs WHERE Source2Index=\"c\" AND Done=1", second, problem));
    EXPECT_EQ(first.text.substr(6), second.text.substr(6));
    EXPECT_EQ(first.literals, (std::vector<sqlite::Literal>{u"a'b", std::int64_t{0}}));
    EXPECT_EQ(first.table, "Pairs");
}

TEST(DialectText, KnowsTheSelectionsOfOneTable) {
    for (const auto& row : CaseTable("one_table.tsv")) {
        Translation translation;
        std::string problem;
        ASSERT_TRUE(Translate(row[0], translation, problem)) << problem;
        EXPECT_EQ(translation.table, Bytes(row[1])) << Bytes(row[0]);
    }
}

TEST(DialectText, SaysWhatIsWrongAndWhere) {
    for (const auto& row : CaseTable("wrong_queries.tsv")) {
        Translation translation;
        std::string problem;
        EXPECT_FALSE(Translate(row[0], translation, problem)) << Bytes(row[0]);
        EXPECT_NE(problem.find(Bytes(row[1])), std::string::npos) << problem;
    }
}

TEST_F(Dialect, DeepNestingEndsInAFailureAndNotInACrash) {
    const std::u16string open(200000, u'(');
    const std::u16string close(200000, u')');
    std::u16string chain = u"1";
    for (int i = 0; i < 100000; ++i) {
        chain += u" & 1 \\ 1 Mod 1";
    }
    for (const std::u16string& expression : {open + u"1" + close, open, close, chain}) {
        EXPECT_FALSE(database->OpenRecordset(u"SELECT " + expression, RecordsetType::Dynaset));
        EXPECT_EQ(FailureKind(), DatabaseFailure::Kind::Query);
    }
}

}  // namespace
}  // namespace generalutilities
