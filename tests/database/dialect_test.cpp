#include "platform/database/sqlite/dialect.h"

#include "case_table.h"
#include "database/project_fixture.h"

namespace generalutilities {
namespace {

using sqlite::Translate;
using sqlite::Translation;

class Dialect : public ProjectTest {};

TEST_F(Dialect, ExpressionsKeepTheirMeaning) {
    for (const auto& row : CaseTable("expressions.tsv")) {
        const std::u16string value = row[1].substr(1);
        EXPECT_EQ(Value(u"SELECT " + row[0] + u" As x"),
                  row[1][0] == u'T'   ? Text(value)
                  : row[1][0] == u'L' ? FieldValue(Number(value))
                  : row[1][0] == u'D' ? FieldValue(std::stod(Bytes(value)))
                                      : FieldValue())
            << Bytes(row[0]);
    }
}

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

TEST_F(Dialect, OrderByTakesNamesAliasesAndPositions) {
    AddRows(3);
    Run(u"UPDATE Pairs SET Target_1036 = Status_1036 * 5 Mod 7, FileID = 5, Source = 'x' & ID, "
        u"Status_1036 = 10 - Status_1036");  // targets: 5, 3, 1
    struct Case {
        const char16_t* query;
        const char16_t* first;
    };
    for (const Case& c :
         {Case{u"SELECT ID FROM Pairs ORDER BY Status_1036", u"r3"},
          Case{u"SELECT ID, Target_1036 As Target FROM Pairs ORDER BY Target", u"r3"},
          Case{u"SELECT FileID, Target_1036, ID FROM Pairs ORDER BY 1, 2 DESC", u"r1"},
          Case{u"SELECT ID, Target_1036 As Source FROM Pairs ORDER BY Source", u"r3"},
          Case{u"SELECT ID FROM Pairs ORDER BY Source", u"r1"}}) {
        const auto rows = Query(c.query);
        EXPECT_EQ(TextOf(*rows, u"ID"), c.first) << files::ToUtf8Lossy(c.query);
        EXPECT_TRUE(rows->Edit());  // and is a live dynaset all the same
    }
}

TEST_F(Dialect, BracketedNamesMayHoldAnything) {
    Run(u"CREATE TABLE [a \"b\" \\ Mod \u4E2D] ([select] TEXT, [x'y] LONG)");
    Run(u"INSERT INTO [a \"b\" \\ Mod \u4E2D] ([select], [x'y]) VALUES ('1', 2)");
    const auto rows = Query(u"SELECT [x'y] FROM [a \"b\" \\ Mod \u4E2D] WHERE [select] = '1'");
    EXPECT_EQ(rows->GetValue(*rows->FieldIndex(u"X'Y")), FieldValue(2));
    // A name that is missing is an error and no text of that spelling.
    EXPECT_FALSE(database->OpenRecordset(u"SELECT [nothing] FROM Pairs", RecordsetType::Dynaset));
    EXPECT_EQ(FailureKind(), DatabaseFailure::Kind::NotFound);
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
