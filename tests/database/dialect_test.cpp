#include "platform/database/sqlite/dialect.h"

#include "database/project_fixture.h"

namespace generalutilities {
namespace {

using sqlite::Translate;
using sqlite::Translation;

class Dialect : public ProjectTest {};

TEST_F(Dialect, ExpressionsKeepTheirMeaning) {
    const std::pair<const char16_t*, FieldValue> cases[] = {
        {u"7 \\ 2", 3},
        {u"-7 Mod 3", -1},
        {u"7 mod 4 * 2", 7},      // 7 Mod 8
        {u"100 \\ 3 * 4", 8},     // 100 \ 12
        {u"20 \\ 6 Mod 2", 1},    // 3 Mod 2
        {u"17 Mod 10 \\ 2", 2},   // 17 Mod 5
        {u"1 + 7 Mod 4 - 2", 2},  // 1 + 3 - 2
        {u"8 \\ 3 \\ 2", 1},
        {u"- (7 \\ 2) Mod 2", -1},
        {u"7 / 2", 3.5},
        {u"5.5 Mod 2", 1.0},
        {u"'a' & 1 + 2 & \"b\"", Text(u"a3b")},
        {u"'a' & Null & 'b'", Text(u"ab")},
        {u"'it''s' & \"a\"\"b\"", Text(u"it'sa\"b")},
        {u"'7 \\ 2 Mod [x] & ''' & 1", Text(u"7 \\ 2 Mod [x] & '1")},
        {u"True", -1},
        {u"True & False", Text(u"-10")},
        {u"2147483648", 2147483648.0},
        {u".5", 0.5},
        {u"(SELECT 9 \\ 2)", 4},
        {u"ABS(-9 \\ 2) Mod 3", 1},
        {u"Null", FieldValue()},
    };
    for (const auto& [expression, value] : cases) {
        const std::u16string query = std::u16string(u"SELECT ") + expression + u" As x";
        EXPECT_EQ(Value(query), value) << files::ToUtf8Lossy(query);
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
    struct Case {
        const char16_t* query;
        const char* table;
    };
    for (const Case& c :
         {Case{u"SELECT * FROM [Pa irs];", "Pa irs"}, Case{u"SELECT a FROM b As c WHERE d", "b"},
          Case{u"SELECT a FROM b c ORDER BY d", "b"}, Case{u"SELECT a FROM b, c", ""},
          Case{u"SELECT a FROM b INNER JOIN c ON d = e", ""}, Case{u"SELECT DISTINCT a FROM b", ""},
          Case{u"SELECT a FROM b GROUP BY a", ""}, Case{u"SELECT a FROM (SELECT a FROM b)", ""},
          Case{u"SELECT a FROM b WHERE c IN (SELECT d FROM e GROUP BY d)", "b"},
          Case{u"SELECT a FROM b WHERE c UNION SELECT d FROM e", ""},
          Case{u"SELECT a FROM b.c", ""}, Case{u"SELECT 1", ""}}) {
        Translation translation;
        std::string problem;
        ASSERT_TRUE(Translate(c.query, translation, problem)) << problem;
        EXPECT_EQ(translation.table, c.table) << files::ToUtf8Lossy(c.query);
    }
}

TEST(DialectText, SaysWhatIsWrongAndWhere) {
    struct Case {
        const char16_t* query;
        const char* problem;
    };
    for (const Case& c :
         {Case{u"", "a query begins with"}, Case{u"PRAGMA user_version", "a query begins with"},
          Case{u"ATTACH 'x' AS y", "a query begins with"}, Case{u"COMMIT", "a query begins with"},
          Case{u"SELECT 'abc", "a text without its closing quote (character 8)"},
          Case{u"SELECT [abc", "brackets that is empty or not closed (character 8)"},
          Case{u"SELECT []", "brackets that is empty or not closed (character 8)"},
          Case{u"SELECT 1; DROP TABLE Pairs", "more than one statement (character 9)"},
          Case{u"SELECT #1/1/2000#", "dates between # signs are not supported (character 8)"},
          Case{u"SELECT ID FROM Pairs WHERE ID Like 'a*'", "Like is not supported (character 31)"},
          Case{u"SELECT a ^ 2", "no meaning in a query (character 10)"},
          Case{u"SELECT ?1", "no meaning in a query (character 8)"},
          Case{u"SELECT 1e999", "a number that is too large (character 8)"},
          Case{u"SELECT [a\xD800]", "no well-formed text (character 8)"},
          Case{u"CREATE TABLE a (b TEXT DEFAULT '\xDC00')", "not well-formed (character 32)"}}) {
        Translation translation;
        std::string problem;
        EXPECT_FALSE(Translate(c.query, translation, problem)) << files::ToUtf8Lossy(c.query);
        EXPECT_NE(problem.find(c.problem), std::string::npos) << problem;
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
