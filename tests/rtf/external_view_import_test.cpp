#include "extview/external_view_import.h"

#include "database/temporary_folder.h"
#include "extview/decimal.h"
#include "extview/rtf/rtf_import.h"
#include "platform/database/sqlite/connection.h"
#include "sample_head.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>

namespace generalutilities {
namespace {

struct FileRow {
    std::u16string id, source, target;
    std::optional<std::u16string> comments = {};
    std::optional<std::int32_t> status = {};
};

/// A reviewed "file" that is a list, and can fail in each of its operations.
class ListImport : public CExternalViewImport {
  public:
    explicit ListImport(std::vector<FileRow> content) : rows(std::move(content)) {}

    bool OpenFile() override {
        isOpen = opens;
        next = 0;
        return opens;
    }
    void CloseFile() override { isOpen = false; }
    bool ReadHeader() override { return hasHeader; }
    bool NextRow(std::u16string& id, std::u16string& source, std::u16string& target,
                 std::u16string& comments, std::int32_t& status) override {
        EXPECT_TRUE(isOpen);
        if (beforeRow) {
            beforeRow(next);
        }
        if (next == rows.size()) {
            return false;
        }
        const FileRow& row = rows[next++];
        id = row.id;
        source = row.source;
        target = row.target;
        comments = row.comments.value_or(comments);
        status = row.status.value_or(status);
        return true;
    }
    bool FileIsDamaged() const override { return isDamaged; }

    std::vector<FileRow> rows;
    std::function<void(std::size_t)> beforeRow;
    bool opens = true;
    bool hasHeader = true;
    bool isDamaged = false;
    bool isOpen = false;

  private:
    std::size_t next = 0;
};

/// A row of `Reimporting` in words: texts, and the flags that are set.
std::string Words(DaoRecordset& table) {
    std::string words;
    for (int field = 1; field <= 10; ++field) {
        std::u16string text;
        if (field == 4 || field == 7 || field == 9) {
            text = table.GetBool(field) ? (field == 9 ? u"accept" : u"changed") : u"-";
        } else if (field == 10) {
            text = Decimal(table.GetLong(field));
        } else {
            text = table.GetString(field).value_or(u"(null)");
        }
        for (const char16_t unit : text) {
            words += unit < 0x20 ? static_cast<char>('@' + unit) : static_cast<char>(unit);
        }
        words += field < 10 ? "|" : "";
    }
    return words;
}

std::vector<std::string> Reimporting(Database& database) {
    std::vector<std::string> rows;
    DaoRecordset table;
    if (!table.Open(database, u"Reimporting", false)) {
        return {"(no table)"};
    }
    int position = 0;
    for (const char16_t* name :
         {u"ID", u"ExistingSource", u"Source", u"SourceHasChanged", u"ExistingTarget", u"Target",
          u"TargetHasChanged", u"Comments", u"Accept", u"Status"}) {
        EXPECT_TRUE(table.BindField(++position, name));
    }
    if (!table.IsEmpty()) {
        do {
            rows.push_back(Words(table));
        } while (table.MoveNext());
    }
    return rows;
}

/// A project with four rows for language 1036.
class TestProject {
  public:
    TestProject() : database(Open(OpenMode::Create)) {
        for (const char16_t* query : {
                 u"CREATE TABLE Pairs (ID TEXT(50), Source MEMO, Target_1036 MEMO, "
                 u"Status_1036 LONG, Comments_1036 MEMO)",
                 u"CREATE INDEX iID ON Pairs (ID)",
                 u"INSERT INTO Pairs VALUES ('1', 'one', 'eins', 1, '')",
                 u"INSERT INTO Pairs VALUES ('2', 'two', NULL, 4, 'see 1')",
                 u"INSERT INTO Pairs VALUES ('3', 'three', 'drei', 514, 'locked')",
                 u"INSERT INTO Pairs VALUES ('4', '\u0006b\u0007hidden\u0008four', "
                 u"'vier\u0006/\u0007x\u0008', NULL, NULL)",
             }) {
            EXPECT_TRUE(database->Execute(query));
        }
    }

    std::unique_ptr<Database> Open(OpenMode mode = OpenMode::ReadWrite) const {
        DatabaseFailure failure;
        return OpenDatabase(folder.Path(u"project.db"), mode, failure);
    }

    TemporaryFolder folder;
    std::unique_ptr<Database> database;
};

TEST(ExternalViewImport, LaysTheFileBesideTheProject) {
    const struct {
        const char* what;
        std::vector<FileRow> file;
        std::vector<std::string> rows;
    } cases[] = {
        {"unchanged", {{u"1", u"one", u"eins"}}, {"1|one|one|-|eins|eins|-||accept|1"}},
        {"changed", {{u"1", u"One", u"Eins"}}, {"1|one|One|changed|eins|Eins|changed||accept|1"}},
        {"a stored null is an empty text",
         {{u"2", u"two", u""}},
         {"2|two|two|-|||-|see 1|accept|4"}},
        {"a first translation",
         {{u"2", u"two", u"zwei", u"done", 8}},
         {"2|two|two|-||zwei|changed|done|accept|8"}},
        {"an emptied comment stays",
         {{u"2", u"two", u"", u"", -1}},
         {"2|two|two|-|||-|see 1|accept|4"}},
        {"locked, with a status of its own",
         {{u"3", u"three", u"drei", u"why?", 0}},
         {"3|three|three|-|drei|drei|-|why?|-|0"}},
        {"hidden parts do not count, but are kept",
         {{u"4", u"bfour", u"vier/"}},
         {"4|FbGhiddenHfour|bfour|-|vierF/GxH|vier/|-||accept|0"}},
        {"braces count",
         {{u"1", u"{1}one", u"eins"}},
         {"1|one|{1}one|changed|eins|eins|-||accept|1"}},
        {"unknown and repeated identifiers",
         {{u"9", u"x", u"y"}, {u"1", u"one", u"eins"}, {u"", u"", u""}, {u"1", u"one", u"zwei"}},
         {"1|one|one|-|eins|eins|-||accept|1", "1|one|one|-|eins|zwei|changed||accept|1"}},
        {"comment and status of the row before, also of an unknown one",
         {{u"1", u"one", u"eins"}, {u"9", u"x", u"y", u"hers", 64}, {u"2", u"two", u""}},
         {"1|one|one|-|eins|eins|-||accept|1", "2|two|two|-|||-|hers|accept|64"}},
        {"no rows", {}, {}},
    };
    for (const auto& test : cases) {
        TestProject project;
        ListImport import(test.file);
        EXPECT_EQ(import.RunImport(*project.database, u"a path", 1036), S_OK) << test.what;
        EXPECT_EQ(Reimporting(*project.database), test.rows) << test.what;
        EXPECT_FALSE(import.isOpen);
    }
}

const std::vector<std::string> Earlier = {"1|one|one|-|eins|eins|-||accept|1"};

/// A project with the outcome of an earlier import.
class ImportedProject : public TestProject {
  public:
    ImportedProject() {
        ListImport import({{u"1", u"one", u"eins"}});
        EXPECT_EQ(import.RunImport(*database, u"", 1036), S_OK);
        EXPECT_EQ(Reimporting(*database), Earlier);
    }
};

TEST(ExternalViewImport, EachImportReplacesTheTable) {
    ImportedProject project;
    ListImport import({{u"2", u"two", u""}});
    EXPECT_EQ(import.RunImport(*project.database, u"", 1036), S_OK);
    EXPECT_EQ(Reimporting(*project.database),
              (std::vector<std::string>{"2|two|two|-|||-|see 1|accept|4"}));
}

TEST(ExternalViewImport, WhateverGoesWrongLeavesTheEarlierTable) {
    const struct {
        const char* what;
        std::function<void(ListImport&)> breakIt;
        HRESULT status;
    } cases[] = {
        {"no file", [](ListImport& import) { import.opens = false; }, everrUnableToOpenFile},
        {"no header", [](ListImport& import) { import.hasHeader = false; },
         everrNotEnoughFieldsPresent},
        {"damaged header",
         [](ListImport& import) {
             import.hasHeader = false;
             import.isDamaged = true;
         },
         E_FAIL},
        {"a read that fails", [](ListImport& import) {
             import.beforeRow = [&](std::size_t row) { import.isDamaged = row == 1;
         };
}
, E_FAIL
}
,
};
for (const auto& test : cases) {
    ImportedProject project;
    ListImport import({{u"2", u"two", u""}, {u"3", u"x", u"y"}});
    test.breakIt(import);
    if (import.beforeRow) {
        import.rows.resize(1);
    }
    EXPECT_EQ(import.RunImport(*project.database, u"", 1036), test.status) << test.what;
    EXPECT_FALSE(import.isOpen) << test.what;
    EXPECT_EQ(Reimporting(*project.database), Earlier) << test.what;
}

ImportedProject project;
ListImport import({{u"2", u"two", u""}, {u"3", u"x", u"y"}});
import.beforeRow = [](std::size_t row) { if (row == 1) { throw std::bad_alloc();
}
}
;
EXPECT_THROW(import.RunImport(*project.database, u"", 1036), std::bad_alloc);
EXPECT_FALSE(import.isOpen);
EXPECT_EQ(Reimporting(*project.database), Earlier);
import.beforeRow = nullptr;
EXPECT_EQ(import.RunImport(*project.database, u"", 1036), S_OK);  // the object works on
EXPECT_EQ(Reimporting(*project.database).size(), 2u);
}

// What a second reader of the project sees while an import runs is the earlier table.
TEST(ExternalViewImport, BecomesVisibleAsAWhole) {
    ImportedProject project;
    ListImport import({{u"2", u"two", u""}, {u"3", u"x", u"y"}});
    int looks = 0;
    import.beforeRow = [&](std::size_t) { const auto other = project.Open();
    ASSERT_TRUE(other);
    EXPECT_EQ(Reimporting(*other), Earlier);
    ++looks;
};
EXPECT_EQ(import.RunImport(*project.database, u"", 1036), S_OK);
EXPECT_EQ(looks, 3);
EXPECT_EQ(Reimporting(*project.database).size(), 2u);
}

TEST(ExternalViewImport, ALockedProjectKeepsItsTableAndSaysSo) {
    sqlite::SetBusyTimeout(50);
    ImportedProject project;
    const auto other = project.Open();
    ASSERT_TRUE(other->BeginTrans());
    ASSERT_TRUE(other->Execute(u"UPDATE Pairs SET Source = 'x' WHERE ID = '1'"));
    ListImport import({{u"2", u"two", u""}});
    EXPECT_EQ(import.RunImport(*project.database, u"", 1036), E_FAIL);
    EXPECT_EQ(project.database->LastFailure().kind, DatabaseFailure::Kind::Locked);
    ASSERT_TRUE(other->Rollback());
    EXPECT_EQ(Reimporting(*project.database), Earlier);
    EXPECT_EQ(import.RunImport(*project.database, u"", 1036), S_OK);
    sqlite::SetBusyTimeout(sqlite::DefaultBusyTimeout);
}

TEST(ExternalViewImport, WithoutPairsEveryRowIsUnknown) {
    TestProject project;
    ASSERT_TRUE(project.database->Execute(u"DROP TABLE Pairs"));
    ListImport import({{u"1", u"one", u"eins"}});
    EXPECT_EQ(import.RunImport(*project.database, u"", 1036), S_OK);
    EXPECT_EQ(Reimporting(*project.database), std::vector<std::string>());
}

TEST(ExternalViewImport, AnUnknownLanguageFindsRowsWithEmptyTexts) {
    TestProject project;
    ListImport import({{u"1", u"one", u"eins"}});
    EXPECT_EQ(import.RunImport(*project.database, u"", 1031), S_OK);
    EXPECT_EQ(Reimporting(*project.database),
              (std::vector<std::string>{"1|one|one|-||eins|changed||accept|0"}));
}

TEST(ExternalViewImport, AnRtfFileComesHome) {
    TestProject project;
    const std::u16string path = project.folder.Path(u"reviewed.rtf");
    std::ofstream(std::filesystem::path(path), std::ios::binary)
        << testing::Head << "\\pard ID\\cell Source\\cell Target\\cell\\row {\\pard\\intbl 1}\\cell"
        << " one\\cell {\\f1\\'f8}\\cell\\row}";
    struct : IExtViewProgress {
        std::vector<std::int32_t> percents;
        void ReportProgress(std::int32_t percent, std::int32_t) override {
            percents.push_back(percent);
        }
    } progress;
    CRTFImport import;
    import.SetProgress(&progress);
    EXPECT_EQ(import.RunImport(*project.database, path, 1036), S_OK);
    DaoRecordset table;
    ASSERT_TRUE(table.Open(*project.database, u"Reimporting", false));
    table.BindField(1, u"Target");
    EXPECT_EQ(table.GetString(1), u"ř");
    ASSERT_FALSE(progress.percents.empty());
    EXPECT_EQ(progress.percents.back(), 100);
    std::filesystem::remove(std::filesystem::path(path));
    table.Close();
    EXPECT_EQ(import.RunImport(*project.database, path, 1036), everrUnableToOpenFile);
}

}  // namespace
}  // namespace generalutilities
