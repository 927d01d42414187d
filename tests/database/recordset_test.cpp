#include "database/project_fixture.h"
#include "database/raw_file.h"
#include "seeded_random.h"

namespace generalutilities {
namespace {

class RecordsetTest : public ProjectTest {
  protected:
    std::u16string Walk(Recordset& rows) {
        std::u16string ids;
        for (; !rows.Eof(); rows.MoveNext()) {
            ids += TextOf(rows, u"ID") + u" ";
        }
        return ids;
    }
};

TEST_F(RecordsetTest, ADynasetKeepsItsRowsAndReadsThemLive) {
    AddRows(300);
    const auto outer = Query(u"SELECT ID, Done FROM Pairs WHERE Done = 0 ORDER BY Status_1036");
    const auto inner = Query(u"SELECT ID, Done As Marked FROM Pairs WHERE Done = 0");
    const int done = *outer->FieldIndex(u"Done");
    const int marked = *inner->FieldIndex(u"Marked");
    int left = 0;
    for (int i = 0; !outer->Eof(); ++i, outer->MoveNext(), inner->MoveNext()) {
        left += outer->GetValue(done) == FieldValue(false) ? 1 : 0;
        if (i % 2 == 0 && i < 200) {
            // The row behind the outer one, which may have been read ahead already.
            inner->MoveNext();
            ASSERT_TRUE(inner->Edit() && inner->PutValue(marked, true) && inner->Update());
            ++i;
            outer->MoveNext();
            EXPECT_EQ(outer->GetValue(done), FieldValue(true)) << i;
        }
    }
    EXPECT_EQ(left, 200);
    EXPECT_EQ(outer->RecordCount(), 300);
    EXPECT_EQ(Query(u"SELECT ID FROM Pairs WHERE Done = True")->RecordCount(), 100);

    Run(u"INSERT INTO Pairs (ID, Done) VALUES ('new', 0)");
    Run(u"DELETE FROM Pairs WHERE ID = 'r2'");
    ASSERT_TRUE(outer->MoveFirst() && outer->MoveNext());
    EXPECT_EQ(outer->GetValue(done), FieldValue());
    EXPECT_TRUE(outer->Edit() && outer->PutValue(done, true));
    EXPECT_FALSE(outer->Update());
    EXPECT_EQ(FailureKind(), DatabaseFailure::Kind::NotFound);
    EXPECT_EQ(outer->RecordCount(), 300);
}

TEST_F(RecordsetTest, AStretchOfRowsWithGapsReadsAsItsRows) {
    AddRows(400);
    Run(u"DELETE FROM Pairs WHERE Status_1036 Mod 9 = 4");
    for (const char16_t* order : {u"", u" ORDER BY Status_1036 DESC", u" ORDER BY ID"}) {
        const auto all =
            Query(std::u16string(u"SELECT ID, Status_1036 As s FROM Pairs WHERE Status_1036 Mod 7 "
                                 u"<> 3") +
                  order);
        const int id = *all->FieldIndex(u"ID");
        const int number = *all->FieldIndex(u"s");
        Run(u"UPDATE Pairs SET Done = False");
        Run(u"DELETE FROM Pairs WHERE Status_1036 Mod 50 = 20 OR Status_1036 > 390");
        int gone = 0;
        int steps = 0;
        for (; !all->Eof(); all->MoveNext(), ++steps) {
            const FieldValue value = all->GetValue(number);
            const auto* found = std::get_if<std::int32_t>(&value);
            gone += found == nullptr ? 1 : 0;
            if (found != nullptr) {
                EXPECT_EQ(TextOf(all->GetValue(id)), u"r" + Decimal(*found));
                EXPECT_TRUE(*found <= 390 && *found % 50 != 20 && *found % 7 != 3);
            }
        }
        EXPECT_EQ(steps, all->RecordCount());
        EXPECT_EQ(steps - gone,
                  Query(u"SELECT ID FROM Pairs WHERE Status_1036 Mod 7 <> 3")->RecordCount());
        EXPECT_EQ(gone > 0, *order == u'\0');  // the first round deletes them
    }
}

// The keys of the first queries are read along the file, those of the second ones row by row: no
// index orders by an expression.
TEST_F(RecordsetTest, AnIndexGivesTheSameRowsInTheSameOrder) {
    AddRows(300);
    Run(u"UPDATE Pairs SET Source2Index = 'key' & Status_1036 Mod 7");
    Run(u"CREATE INDEX iSource2Index ON Pairs (Source2Index)");
    for (const bool sparse : {false, true}) {
        if (sparse) {
            Run(u"INSERT INTO Pairs (rowid, ID, Status_1036) VALUES (9000000000000000000, 'r5', "
                u"5)");
            Run(u"INSERT INTO Pairs (rowid, ID, Status_1036) VALUES (-7, 'r05', 5)");
        }
        for (const std::u16string where : {u"Status_1036 Mod 5 <> 2", u"Status_1036 < 0"}) {
            const std::u16string query = u"SELECT ID FROM Pairs p WHERE " + where + u" ORDER BY ";
            for (const std::u16string order : {u"ID", u"Source2Index"}) {
                EXPECT_EQ(Walk(*Query(query + order)), Walk(*Query(query + order + u" & ''")));
            }
        }
    }
}

TEST_F(RecordsetTest, AMarkThatIsThereIsNotWritten) {
    AddRows(9);
    RawFile other(path);
    const std::string version = other.Rows("PRAGMA data_version");
    Run(u"UPDATE Pairs SET Done = 0 WHERE ID = 'r1' OR ID = 'r2'");
    EXPECT_EQ(other.Rows("PRAGMA data_version"), version);
    // ... unless somebody listens.
    other.Run(
        "CREATE TABLE heard (n); CREATE TRIGGER t AFTER UPDATE ON Pairs BEGIN INSERT INTO heard "
        "VALUES (1); END");
    Run(u"UPDATE Pairs SET Done = 0");
    EXPECT_EQ(other.Rows("SELECT COUNT(*) FROM heard"), "9|\n");
}

TEST_F(RecordsetTest, ViewsLiveAsLongAsTheirRowIsCurrent) {
    AddRows(2);
    const auto rows = Query(u"SELECT ID, Source FROM Pairs ORDER BY ID");
    const int source = *rows->FieldIndex(u"Source");
    const auto before = std::get<std::u16string_view>(rows->GetValue(source));
    for (int i = 0; i < 3; ++i) {
        Run(u"UPDATE Pairs SET Source = Source & 'x' WHERE ID = 'r1'");
        EXPECT_EQ(TextOf(rows->GetValue(source)), u"source 1" + std::u16string(i + 1U, u'x'));
    }
    Run(u"UPDATE Pairs SET Done = 1 WHERE ID = 'r1'");
    const auto after = std::get<std::u16string_view>(rows->GetValue(source));
    EXPECT_EQ(TextOf(*rows, u"ID"), u"r1");  // one more field, asked for late
    EXPECT_EQ(before, u"source 1");
    EXPECT_EQ(after, u"source 1xxx");
}

TEST_F(RecordsetTest, EdgesOfTheWalk) {
    for (const RecordsetType type : {RecordsetType::Table, RecordsetType::Dynaset}) {
        const auto empty = database->OpenRecordset(u"Pairs", type);
        ASSERT_TRUE(empty) << Words();
        EXPECT_TRUE(empty->Bof() && empty->Eof());
        EXPECT_FALSE(empty->MoveFirst() || empty->MoveLast() || empty->MoveNext());
        EXPECT_FALSE(empty->Edit());
        EXPECT_FALSE(empty->PutValue(0, true));
        EXPECT_FALSE(empty->Update());
        EXPECT_EQ(empty->RecordCount(), 0);
        EXPECT_EQ(empty->GetValue(*empty->FieldIndex(u"id")), FieldValue());
    }
    AddRows(200);
    for (const RecordsetType type : {RecordsetType::Table, RecordsetType::Dynaset}) {
        const auto rows = database->OpenRecordset(u"Pairs", type);
        EXPECT_FALSE(rows->Bof() || rows->Eof());
        EXPECT_EQ(rows->RecordCount(), 200);
        const std::u16string all = Walk(*rows);
        EXPECT_EQ(all.substr(0, 9), u"r1 r2 r3 ");
        EXPECT_EQ(all.substr(all.size() - 10), u"r199 r200 ");
        EXPECT_FALSE(rows->MoveNext() || rows->Edit());
        EXPECT_EQ(TextOf(*rows, u"ID"), u"(no text)");
        ASSERT_TRUE(rows->MoveLast());
        EXPECT_EQ(TextOf(*rows, u"ID"), u"r200");
        ASSERT_TRUE(rows->MoveFirst());
        EXPECT_EQ(Walk(*rows), all);
        EXPECT_FALSE(rows->FieldIndex(u"Nothing"));
        for (const int position : {-1, 8, 1000}) {
            EXPECT_EQ(rows->GetValue(position), FieldValue());
        }
        EXPECT_FALSE(rows->AddNew() && rows->PutValue(8, true));
    }
    const auto none = Query(u"SELECT ID FROM Pairs WHERE Done = True");
    EXPECT_TRUE(none->Bof() && none->Eof());
}

TEST_F(RecordsetTest, AliasesAreWrittenToTheirColumns) {
    AddRows(2);
    const auto rows = Query(
        u"SELECT p.ID, Target_1036 As Target, Status_1036 As Status "
        u"FROM Pairs As p WHERE p.ID = 'r2'");
    ASSERT_TRUE(rows->Edit());
    EXPECT_TRUE(rows->PutValue(*rows->FieldIndex(u"TARGET"), u"cible"));
    EXPECT_TRUE(rows->PutValue(*rows->FieldIndex(u"Status"), 512));
    ASSERT_TRUE(rows->Update()) << Words();
    EXPECT_EQ(TextOf(*rows, u"Target"), u"cible");
    EXPECT_EQ(Value(u"SELECT Target_1036 FROM Pairs WHERE Status_1036 = 512"), Text(u"cible"));
    // A move drops a change that was not written.
    ASSERT_TRUE(rows->Edit() && rows->PutValue(1, u"lost") && rows->MoveFirst());
    EXPECT_FALSE(rows->Update());
    EXPECT_EQ(TextOf(*rows, u"Target"), u"cible");
}

TEST_F(RecordsetTest, OnlyTablesWithRowidsAreOpenedAsTables) {
    Run(u"CREATE VIEW Named AS SELECT ID, Source FROM Pairs");
    Run(u"CREATE TABLE Keyed (ID TEXT PRIMARY KEY, rowid TEXT) WITHOUT ROWID");
    for (const char16_t* name : {u"Keyed", u"Named", u"Nothing"}) {
        EXPECT_FALSE(database->OpenRecordset(name, RecordsetType::Table));
    }
    EXPECT_EQ(FailureKind(), DatabaseFailure::Kind::NotFound);
    // A column that hides the rowid's usual name.
    Run(u"CREATE TABLE Hiding (rowid TEXT, oid TEXT)");
    Run(u"INSERT INTO Hiding VALUES ('x', 'y')");
    const auto rows = Query(u"SELECT oid, rowid FROM Hiding");
    EXPECT_TRUE(rows->Edit() && rows->PutValue(1, u"z") && rows->Update()) << Words();
    EXPECT_EQ(TextOf(*rows, u"rowid"), u"z");
}

TEST_F(RecordsetTest, SeeksByTheIndexAlone) {
    AddRows(100);
    const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
    EXPECT_FALSE(table->Seek(u"r5"));
    EXPECT_FALSE(table->SetIndex(u"iNothing"));
    EXPECT_EQ(FailureKind(), DatabaseFailure::Kind::NotFound);
    EXPECT_FALSE(table->Seek(u"r5"));
    ASSERT_TRUE(table->SetIndex(u"iID")) << Words();
    for (const std::u16string key : {u"r7", u"r", u"", u"R7", u"r100", u"r'7"}) {
        const bool found = key == u"r7" || key == u"r100";
        ASSERT_TRUE(table->Seek(key));
        EXPECT_EQ(table->NoMatch(), !found) << files::ToUtf8Lossy(key);
        EXPECT_EQ(TextOf(*table, u"ID"), found ? key : u"(no text)");
        EXPECT_EQ(table->Edit(), found);
    }
    Run(u"UPDATE Pairs SET Source = 'twin', ID = 'r7' WHERE ID = 'r50'");
    ASSERT_TRUE(table->Seek(u"r7"));
    EXPECT_EQ(TextOf(*table, u"Source"), u"source 7");
    // A dynaset has no index.
    EXPECT_FALSE(Query(u"SELECT ID FROM Pairs")->SetIndex(u"iID"));
    // An index of another table is not taken.
    Run(u"CREATE INDEX iFile ON Files (ID)");
    EXPECT_FALSE(table->SetIndex(u"iFile"));
}

TEST_F(RecordsetTest, NewRowsHaveTheDefaultsOfTheTable) {
    const std::u16string quotes = u"\"\"";
    ASSERT_TRUE(
        database->CreateTable({u"Working",
                               {{u"ID", FieldDefinition::Type::Text, quotes},
                                {u"Target", FieldDefinition::Type::LongText, quotes, true, true},
                                {u"Note", FieldDefinition::Type::LongText, u"'it''s' ", false},
                                {u"Accept", FieldDefinition::Type::YesNo, true},
                                {u"Changed", FieldDefinition::Type::YesNo, false},
                                {u"Status", FieldDefinition::Type::Long, -7},
                                {u"Free", FieldDefinition::Type::Long, std::monostate()},
                                {u"Count", FieldDefinition::Type::Long, u" -3"}}}))
        << Words();
    const auto table = database->OpenRecordset(u"Working", RecordsetType::Table);
    ASSERT_TRUE(table->AddNew() && table->Update()) << Words();
    ASSERT_TRUE(table->AddNew() && table->PutValue(3, false) && table->PutValue(5, 2) &&
                table->Update());
    ASSERT_TRUE(table->MoveFirst());
    const FieldValue expected[] = {Text(u""), Text(u""), Text(u"it's"), true,
                                   false,     -7,        FieldValue(),  -3};
    for (int field = 0; field < 8; ++field) {
        EXPECT_EQ(table->GetValue(field), expected[field]) << field;
    }
    ASSERT_TRUE(table->MoveNext());
    EXPECT_EQ(table->GetValue(3), FieldValue(false));
    EXPECT_EQ(table->GetValue(5), FieldValue(2));
    EXPECT_EQ(Query(u"SELECT ID FROM Working WHERE Accept = -1")->RecordCount(), 1);
    EXPECT_FALSE(table->AddNew() && table->PutValue(2, u"") && table->Update());
    EXPECT_EQ(FailureKind(), DatabaseFailure::Kind::Query);

    for (const char16_t* expression : {u"1 + 1", u"Source", u"'a", u"-'a'", u"- - 1", u")"}) {
        EXPECT_FALSE(database->CreateTable(
            {u"Wrong", {{u"a", FieldDefinition::Type::Text, std::u16string(expression)}}}));
        EXPECT_EQ(FailureKind(), DatabaseFailure::Kind::Query);
    }
    EXPECT_FALSE(database->CreateTable({u"Working", {{u"a"}}}));
    EXPECT_EQ(database->TableNames(),
              (std::vector<std::u16string>{u"Files", u"Pairs", u"Working"}));
    EXPECT_EQ(database->ColumnNames(u"files"), (std::vector<std::u16string>{u"ID", u"FileName"}));
    EXPECT_TRUE(database->ColumnNames(u"Nothing").empty());
}

class ExactText : public RecordsetTest {
  protected:
    /// Random units with a weight on those that conversions stumble over.
    std::u16string RandomText() {
        static constexpr char16_t Odd[] = {0xFEFF, 0xFFFE, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0,
                                           u'\'',  u'"',   u'\\',  0xFFFF, 0xFFFD, u' ',   u']'};
        std::u16string text(random() % 12, u'\0');
        for (char16_t& unit : text) {
            unit = random() % 2 == 0 ? Odd[random() % std::size(Odd)]
                                     : static_cast<char16_t>(random());
        }
        return text;
    }

    static std::u16string Quoted(std::u16string_view text, char16_t quote) {
        std::u16string literal(1, quote);
        for (const char16_t unit : text) {
            literal.append(unit == quote ? 2 : 1, unit);
        }
        return literal + quote;
    }

    SeededRandom random;
};

TEST_F(ExactText, ComesBackThroughValuesKeysAndLiterals) {
    std::vector<std::u16string> texts = {u"\uFEFF", u"\uFFFE", std::u16string(3, u'\0'), u""};
    while (texts.size() < 400) {
        texts.push_back(RandomText());
    }
    ASSERT_TRUE(database->BeginTrans());
    const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
    const int id = *table->FieldIndex(u"ID");
    const int source = *table->FieldIndex(u"Source");
    for (const std::u16string& text : texts) {
        ASSERT_TRUE(table->AddNew() && table->PutValue(id, text) && table->Update());
        const char16_t quote = random() % 2 == 0 ? u'\'' : u'"';
        const std::u16string literal = Quoted(text, quote);
        Run(u"UPDATE Pairs SET Source = " + literal + u" WHERE ID = " + literal);
    }
    ASSERT_TRUE(database->CommitTrans());
    const auto again = Open(path);
    const auto rows = again->OpenRecordset(u"Pairs", RecordsetType::Table);
    ASSERT_TRUE(rows->SetIndex(u"iID") && table->SetIndex(u"iID"));
    for (const std::u16string& text : texts) {
        ASSERT_TRUE(table->Seek(text));
        ASSERT_FALSE(table->NoMatch());
        EXPECT_EQ(TextOf(table->GetValue(id)), text);
        EXPECT_EQ(TextOf(table->GetValue(source)), text);
        ASSERT_TRUE(rows->Seek(text) && !rows->NoMatch());
        EXPECT_EQ(TextOf(*rows, u"Source"), text);
    }
}

}  // namespace
}  // namespace generalutilities
