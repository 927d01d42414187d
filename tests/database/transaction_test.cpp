#include "database/project_fixture.h"
#include "database/raw_file.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/sqlite_database.h"

namespace generalutilities {
namespace {

using Kind = DatabaseFailure::Kind;

class Transactions : public ProjectTest {
  protected:
    int Rows() { return Query(u"SELECT ID FROM Pairs")->RecordCount(); }
};

TEST_F(Transactions, AreUndoneAlsoForOpenRecordsets) {
    AddRows(2);
    const auto rows = Query(u"SELECT ID, Done FROM Pairs");
    ASSERT_TRUE(database->BeginTrans());
    Run(u"UPDATE Pairs SET Done = True");
    EXPECT_EQ(rows->GetValue(*rows->FieldIndex(u"Done")), FieldValue(true));
    Run(u"DROP TABLE Files");
    ASSERT_TRUE(database->Rollback());
    EXPECT_EQ(rows->GetValue(*rows->FieldIndex(u"Done")), FieldValue(false));
    EXPECT_EQ(database->TableNames().size(), 2U);
    ASSERT_TRUE(database->BeginTrans());
    Run(u"INSERT INTO Pairs (ID) VALUES ('x')");
    database.reset();
    EXPECT_EQ(Open(path)->OpenRecordset(u"Pairs", RecordsetType::Table)->RecordCount(), 2);
    EXPECT_EQ(TextOf(*rows, u"ID"), u"r1");  // a recordset may outlive its database
}

TEST_F(Transactions, ATableIsReplacedWhileRecordsetsStandOnIt) {
    AddRows(5);
    const TableDefinition table = {u"Reimporting", {{u"ID"}, {u"Status"}}};
    EXPECT_FALSE(database->Execute(u"DROP TABLE Reimporting"));
    EXPECT_EQ(FailureKind(), Kind::NotFound);
    EXPECT_NE(Words().find("no such table: Reimporting"), std::string::npos) << Words();
    ASSERT_TRUE(database->CreateTable(table)) << Words();
    const auto pairs = database->OpenRecordset(u"Pairs", RecordsetType::Table);
    const auto stale = database->OpenRecordset(u"Reimporting", RecordsetType::Table);
    ASSERT_TRUE(stale->AddNew() && stale->PutValue(0, u"a") && stale->Update());
    ASSERT_TRUE(stale->MoveFirst());
    EXPECT_EQ(TextOf(*stale, u"ID"), u"a");
    ASSERT_TRUE(database->BeginTrans());
    Run(u"DROP TABLE Reimporting");
    EXPECT_EQ(TextOf(*stale, u"ID"), u"(no text)");
    EXPECT_FALSE(stale->MoveNext());
    ASSERT_TRUE(database->CreateTable({u"Reimporting", {{u"Other"}}}));
    ASSERT_TRUE(database->CommitTrans());
    EXPECT_EQ(database->ColumnNames(u"Reimporting"), std::vector<std::u16string>{u"Other"});
    EXPECT_FALSE(database->OpenRecordset(u"SELECT ID FROM Reimporting", RecordsetType::Dynaset));
    EXPECT_EQ(TextOf(*pairs, u"ID"), u"r1");
}

/// The engine on a handle that the test can get hold of.
class Engine : public Transactions {
  protected:
    Engine() {
        database.reset();
        raw = RawFile(path).Release();
        engine = std::make_shared<sqlite::Connection>(sqlite::OpenFileHandle(raw), "project.gu");
        database = std::make_unique<sqlite::SqliteDatabase>(engine);
    }

    sqlite3* raw = nullptr;
    std::shared_ptr<sqlite::Connection> engine;
};

// Rows that are written all the same to a locked file do not wait one by one.
TEST_F(Engine, WaitsForALockedFileOnce) {
    const auto wait = [this] {
        int milliseconds = -1;
        sqlite3_exec(
            raw, "PRAGMA busy_timeout",
            [](void* out, int, char** values, char**) {
                *static_cast<int*>(out) = std::atoi(values[0]);
                return 0;
            },
            &milliseconds, nullptr);
        return milliseconds;
    };
    RawFile other(path);
    other.Run("BEGIN IMMEDIATE");
    EXPECT_EQ(wait(), sqlite::DefaultBusyTimeout);
    sqlite3_busy_timeout(raw, 1);
    EXPECT_FALSE(database->Execute(u"UPDATE Pairs SET Done = 1"));
    EXPECT_EQ(wait(), 0);
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(wait(), 0) << "that one can read says nothing about writing";
    other.Run("COMMIT");
    Run(u"UPDATE Pairs SET Done = 1");
    EXPECT_EQ(wait(), sqlite::DefaultBusyTimeout);
}

TEST_F(Engine, KeepsABoundedNumberOfStatements) {
    AddRows(3);
    for (int i = 0; i < 500; ++i) {
        // One text for all keys, another for each alias.
        Query(u"SELECT ID FROM Pairs WHERE ID = 'r" + Decimal(i) + u"'");
        if (i == 100) {
            EXPECT_LT(engine->StatementsIdle(), 20U);
        }
    }
    for (int i = 0; i < 500; ++i) {
        const auto rows =
            Query(u"SELECT ID As a" + Decimal(i) + u" FROM Pairs ORDER BY a" + Decimal(i));
        EXPECT_EQ(TextOf(rows->GetValue(0)), u"r1");
        EXPECT_LE(engine->StatementsIdle(), sqlite::Connection::StatementsKept);
    }
    int prepared = 0;
    for (auto* s = sqlite3_next_stmt(raw, nullptr); s != nullptr; s = sqlite3_next_stmt(raw, s)) {
        ++prepared;
        EXPECT_FALSE(sqlite3_stmt_busy(s)) << sqlite3_sql(s);
    }
    EXPECT_LE(prepared, static_cast<int>(sqlite::Connection::StatementsKept));
}

TEST_F(Engine, AFullDiskIsNamed) {
    sqlite3_exec(raw, "PRAGMA max_page_count = 12", nullptr, nullptr, nullptr);
    const std::u16string text(5000, u'x');
    ASSERT_TRUE(database->BeginTrans());
    const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
    bool written = true;
    for (int i = 0; i < 100 && written; ++i) {
        written = table->AddNew() && table->PutValue(1, text) && table->Update();
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(FailureKind(), Kind::DiskFull) << Words();
    EXPECT_TRUE(database->Rollback());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(Engine, NothingIsWrittenBehindATransactionThatWasLost) {
    ASSERT_TRUE(database->BeginTrans());
    ASSERT_TRUE(database->BeginTrans());
    Run(u"INSERT INTO Pairs (ID) VALUES ('x')");
    const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
    // What SQLite does by itself after some errors of the disk.
    sqlite3_exec(raw, "ROLLBACK", nullptr, nullptr, nullptr);
    EXPECT_FALSE(table->AddNew() && table->PutValue(0, u"y") && table->Update());
    EXPECT_FALSE(database->Execute(u"INSERT INTO Pairs (ID) VALUES ('z')"));
    EXPECT_FALSE(database->CreateTable({u"Reimporting", {{u"ID"}}}));
    EXPECT_FALSE(database->CommitTrans());
    EXPECT_TRUE(database->Rollback());
    EXPECT_FALSE(database->CommitTrans());
    EXPECT_TRUE(database->Rollback());
    EXPECT_NE(Words().find("undone"), std::string::npos) << Words();
    EXPECT_EQ(Rows(), 0);
    Run(u"INSERT INTO Pairs (ID) VALUES ('x')");
    EXPECT_EQ(Rows(), 1);
}

}  // namespace
}  // namespace generalutilities
