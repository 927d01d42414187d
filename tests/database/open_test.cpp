#include "database/project_fixture.h"
#include "database/raw_file.h"
#include "platform/database/sqlite/connection.h"
#include "seeded_random.h"

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace generalutilities {
namespace {

using Kind = DatabaseFailure::Kind;

class OpenTest : public ProjectTest {
  protected:
    OpenTest() {
        sqlite::SetBusyTimeout(50);
        database = Open(path);
    }
    ~OpenTest() override { sqlite::SetBusyTimeout(sqlite::DefaultBusyTimeout); }

    std::string Native(std::u16string_view file) { return files::ToNativePath(file); }

    void ExpectRefused(std::u16string_view file, Kind kind, std::string_view words,
                       OpenMode mode = OpenMode::ReadWrite) {
        DatabaseFailure failure;
        EXPECT_FALSE(OpenDatabase(file, mode, failure)) << files::ToUtf8Lossy(file);
        const std::string description = files::ToUtf8Lossy(failure.description);
        EXPECT_EQ(failure.kind, kind) << description;
        EXPECT_NE(description.find(words), std::string::npos) << description;
        EXPECT_NE(failure.description.find(file), std::u16string::npos) << description;
        EXPECT_EQ(failure.source, u"SQLite");
    }

    /// Everything that a host does with a project, whatever becomes of it.
    static void UseWholly(Database& project) {
        for (const RecordsetType type : {RecordsetType::Table, RecordsetType::Dynaset}) {
            const auto rows = project.OpenRecordset(u"Pairs", type);
            if (!rows) {
                EXPECT_NE(project.LastFailure().kind, Kind::None);
                continue;
            }
            rows->SetIndex(u"iID");
            rows->Seek(u"r3");
            rows->MoveFirst();
            for (int steps = 0; !rows->Eof() && steps < 100; ++steps) {
                for (const auto& column : project.ColumnNames(u"Pairs")) {
                    rows->GetValue(rows->FieldIndex(column).value_or(-1));
                }
                if (!rows->MoveNext()) {
                    break;
                }
            }
            rows->RecordCount();
        }
        project.OpenRecordset(u"SELECT ID FROM Pairs WHERE Done = 0 ORDER BY ID",
                              RecordsetType::Dynaset);
        project.BeginTrans();
        project.Execute(u"UPDATE Pairs SET Done = 0");
        project.Execute(u"INSERT INTO Pairs (ID) VALUES ('new')");
        project.Execute(u"DROP TABLE Files");
        project.Rollback();  // a commit would be as good, but waits for the disk
    }
};

TEST_F(OpenTest, SaysWhyAFileIsNoProject) {
    database.reset();
    mkfifo((folder / "pipe").c_str(), 0600);
    folder.Write("empty", "");
    folder.Write("text", std::string(5000, 'x'));
    folder.Write("short", "SQLite format 3");
    RawFile(folder.Path(u"other")).Run("CREATE TABLE Files (ID)");
    RawFile(folder.Path(u"view"))
        .Run("CREATE TABLE a (ID, Source); CREATE VIEW Pairs AS SELECT * FROM a");
    RawFile(folder.Path(u"columns")).Run("CREATE TABLE pairs (id TEXT)");
    const std::tuple<const char16_t*, Kind, const char*> cases[] = {
        {u"missing", Kind::NotFound, "No such file"},
        {u"empty/x", Kind::NotFound, "Check the path"},
        {u"", Kind::NotAProject, "is a folder"},
        {u"pipe", Kind::NotAProject, "no ordinary file"},
        {u"empty", Kind::NotAProject, "is empty"},
        {u"text", Kind::NotAProject, "is no database"},
        {u"short", Kind::NotAProject, "is no database"},
        {u"other", Kind::NotAProject, "without the table \"Pairs\""},
        {u"view", Kind::NotAProject, "without the table \"Pairs\""},
        {u"columns", Kind::NotAProject, "without the column \"Source\""},
    };
    for (const auto& [name, kind, words] : cases) {
        ExpectRefused(folder.Path(name), kind, words);
    }
    ExpectRefused(u"", Kind::NotFound, "No such file");
    ExpectRefused(path, Kind::Other, "exists already", OpenMode::Create);
    ExpectRefused(folder.Path(u"no/folder"), Kind::NotFound, "cannot be created", OpenMode::Create);

    DatabaseFailure failure;
    EXPECT_FALSE(OpenDatabase(folder.Path(u"a\xD800"), OpenMode::Create, failure));
    EXPECT_EQ(failure.kind, Kind::NotFound);
    EXPECT_FALSE(OpenDatabase(u"postgresql://host/project", OpenMode::ReadWrite, failure));
    EXPECT_EQ(failure.kind, Kind::NotFound);
}

TEST_F(OpenTest, NamesOfSqlitesOwnAreOrdinaryPaths) {
    const auto back = std::filesystem::current_path();
    std::filesystem::current_path(Native(folder.Path(u"")));
    for (const char16_t* name : {u":memory:", u"file:a?mode=memory", u"-x"}) {
        EXPECT_TRUE(Open(name, OpenMode::Create)->Execute(u"CREATE TABLE Pairs (ID, Source)"));
        EXPECT_TRUE(Open(name));
    }
    std::filesystem::current_path(back);
}

TEST_F(OpenTest, ALockedFileIsWaitedForAndThenReported) {
    AddRows(3);
    RawFile other(path);
    other.Run("BEGIN IMMEDIATE");
    const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
    ASSERT_TRUE(table);  // reading goes on
    EXPECT_FALSE(database->Execute(u"UPDATE Pairs SET Done = 1"));
    EXPECT_EQ(FailureKind(), Kind::Locked);
    EXPECT_NE(Words().find("Another program"), std::string::npos) << Words();
    EXPECT_FALSE(table->AddNew() && table->Update());
    EXPECT_FALSE(database->BeginTrans());
    EXPECT_FALSE(database->CommitTrans());
    other.Run("COMMIT");
    EXPECT_TRUE(table->Update()) << Words();  // the row is still there to be written
    EXPECT_EQ(table->RecordCount(), 4);

    other.Run("BEGIN EXCLUSIVE");
    ExpectRefused(path, Kind::Locked, "Another program");
}

TEST_F(OpenTest, AnOpenRecordsetLocksNobodyOut) {
    AddRows(100);
    const auto rows = Query(u"SELECT ID FROM Pairs ORDER BY ID");
    const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
    ASSERT_TRUE(table->SetIndex(u"iID") && table->Seek(u"r5"));
    for (int i = 0; i < 10; ++i) {
        EXPECT_NE(TextOf(*rows, u"ID"), u"(no text)");
        rows->MoveNext();
    }
    RawFile other(path);
    other.Run("PRAGMA busy_timeout = 0; BEGIN EXCLUSIVE; UPDATE Pairs SET Done = 1; COMMIT");
    Run(u"DROP TABLE Files");
}

TEST_F(OpenTest, AReadOnlyFileIsReadAndNotWritten) {
    AddRows(3);
    database.reset();
    const auto expectReadOnly = [this](bool done) {
        EXPECT_FALSE(done);
        EXPECT_EQ(FailureKind(), Kind::ReadOnly) << Words();
    };
    /// Runs with the modes of file and folder, and as nobody where we are the superuser.
    const auto with = [this](mode_t file, mode_t inFolder, const std::function<void()>& run) {
        chmod(Native(path).c_str(), file);
        chmod(folder.Path().c_str(), inFolder);
        const uid_t user = geteuid();
        ASSERT_TRUE(user != 0 || seteuid(65534) == 0);
        run();
        ASSERT_TRUE(user != 0 || seteuid(0) == 0);
        chmod(folder.Path().c_str(), 0777);
    };
    with(0444, 0555, [&] {
        database = Open(path);
        EXPECT_EQ(Query(u"SELECT ID FROM Pairs")->RecordCount(), 3);
        const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
        EXPECT_TRUE(table->SetIndex(u"iID") && table->Seek(u"r2"));
        expectReadOnly(table->Edit() && table->PutValue(0, u"x") && table->Update());
        expectReadOnly(database->Execute(u"DROP TABLE Pairs"));
        expectReadOnly(database->CreateTable({u"Reimporting", {{u"ID"}}}));
        ExpectRefused(folder.Path(u"new"), Kind::ReadOnly, "cannot be created", OpenMode::Create);
    });
    with(0, 0777, [&] { ExpectRefused(path, Kind::ReadOnly, "cannot be read"); });
    // The file may be written but the folder not, so that no journal can be made.
    with(0666, 0555, [&] {
        database = Open(path);
        expectReadOnly(database->Execute(u"UPDATE Pairs SET Done = 1"));
    });
}

TEST_F(OpenTest, OtherEncodingsAndJournalsAreKept) {
    for (const char* encoding : {"UTF-8", "UTF-16be"}) {
        const std::u16string file = folder.Path(files::FromUtf8(encoding));
        {
            RawFile raw(file);
            raw.Run(std::string("PRAGMA encoding = '") + encoding + "'; PRAGMA journal_mode = WAL");
            raw.Run("CREATE TABLE Pairs (ID TEXT, Source TEXT); CREATE INDEX iID ON Pairs (ID)");
        }
        database = Open(file);
        const bool exact = std::string_view(encoding) != "UTF-8";
        struct Case {
            std::u16string text;
            std::u16string inUtf8;
        };
        const std::u16string ordinary = u"\uFEFF\U0001F600\u4E2D'\\";
        const std::u16string zero(u"a\0b", 3);
        const std::u16string unpaired = {0xD800, u'a', 0xDC00};
        const std::u16string reversed = {0xFFFE, u'x'};
        for (const Case& c : {Case{ordinary, ordinary}, Case{zero, zero},
                              Case{unpaired, u"\uFFFDa\uFFFD"}, Case{reversed, u"\uFFFDx"}}) {
            const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
            ASSERT_TRUE(table->AddNew() && table->PutValue(0, c.text) && table->Update());
            ASSERT_TRUE(table->SetIndex(u"iID") && table->Seek(c.text) && !table->NoMatch());
            EXPECT_EQ(TextOf(table->GetValue(0)), exact ? c.text : c.inUtf8) << encoding;
        }
        EXPECT_EQ(Value(u"SELECT journal_mode FROM pragma_journal_mode"), Text(u"wal"));
    }
}

TEST_F(OpenTest, ATextColumnGivesTextsWhateverIsStored) {
    const std::u16string file = folder.Path(u"memo");
    RawFile(file).Run(
        "CREATE TABLE Pairs (ID VARCHAR, Source MEMO); INSERT INTO Pairs VALUES (1, 2)");
    database = Open(file);
    for (const RecordsetType type : {RecordsetType::Table, RecordsetType::Dynaset}) {
        const auto rows = database->OpenRecordset(u"Pairs", type);
        EXPECT_EQ(TextOf(*rows, u"ID") + TextOf(*rows, u"Source"), u"12");
    }
}

TEST_F(OpenTest, DamageGivesAFailureOrData) {
    AddRows(60);
    Run(u"UPDATE Pairs SET Target_1036 = Source & Source & Source & Source & Source & Source");
    database.reset();
    const std::string intact = ReadFile(path);
    SeededRandom random;
    const std::u16string damaged = folder.Path(u"damaged");
    const auto examine = [&](const std::string& bytes) {
        WriteFile(damaged, bytes);
        DatabaseFailure failure;
        const auto project = OpenDatabase(damaged, OpenMode::ReadWrite, failure);
        if (project) {
            UseWholly(*project);
        } else {
            EXPECT_NE(failure.kind, Kind::None);
            EXPECT_FALSE(failure.description.empty());
        }
    };
    for (std::size_t offset = 0; offset < intact.size();) {
        std::string bytes = intact;
        bytes[offset] = static_cast<char>(random());
        examine(bytes);
        // Each byte of the headers of file and pages, and a sample of the rest.
        offset += offset % 4096 < 24 || offset < 100 ? 1 : 1 + random() % 199;
    }
    for (std::size_t size = 1; size < intact.size(); size += 1 + random() % 997) {
        examine(intact.substr(0, size));
    }
    // A root page of nonsense is found where it is read.
    std::string bytes = intact;
    const std::size_t last = bytes.size() - 4096;
    bytes.replace(last, 4096, std::string(4096, '\x5A'));
    for (std::size_t page = 4096; page < last; page += 4096) {
        bytes.replace(page, 8, std::string(8, '\x5A'));
    }
    WriteFile(damaged, bytes);
    database = Open(damaged);
    EXPECT_FALSE(database->OpenRecordset(u"SELECT ID FROM Pairs", RecordsetType::Dynaset));
    EXPECT_EQ(FailureKind(), Kind::Corrupt) << Words();
}

}  // namespace
}  // namespace generalutilities
