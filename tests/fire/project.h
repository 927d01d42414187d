#pragma once

#include "database/temporary_folder.h"
#include "faulty_vfs.h"
#include "rtf/sample_head.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>

/// A project that has been through an import, a reviewed file for it, and what can be seen of both
/// from outside.
namespace generalutilities::fire {

struct Contents {
    std::string pairs;
    std::string reimporting;
    std::string damage;  ///< what SQLite finds when it checks the whole file
    friend bool operator==(const Contents&, const Contents&) = default;
};

/// What the rows of a query hold, one line a row; the message in its place if it fails.
inline std::string Rows(sqlite3* database, const char* query) {
    std::string all;
    const auto add = [](void* out, int count, char** values, char**) {
        for (int i = 0; i < count; ++i) {
            *static_cast<std::string*>(out) += std::string(values[i] ? values[i] : "NULL") + "|";
        }
        *static_cast<std::string*>(out) += "\n";
        return 0;
    };
    return sqlite3_exec(database, query, add, &all, nullptr) == SQLITE_OK
               ? all
               : sqlite3_errmsg(database);
}

/// Around the faulty file system, so that a half-done import is undone as by any other program.
class PlainConnection {
  public:
    explicit PlainConnection(const std::string& path) {
        sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE, "unix");
        sqlite3_busy_timeout(handle, 2000);
    }
    ~PlainConnection() { sqlite3_close(handle); }
    PlainConnection(const PlainConnection&) = delete;
    PlainConnection& operator=(const PlainConnection&) = delete;
    sqlite3* Get() const { return handle; }

  private:
    sqlite3* handle = nullptr;
};

class Project {
  public:
    /// `rows` segments with texts of `textSize` letters.
    Project(int rows, std::size_t textSize) {
        sqlite3* database = nullptr;
        sqlite3_open_v2(original.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        "unix");
        std::string sql =
            "PRAGMA synchronous = OFF; BEGIN;"
            "CREATE TABLE Pairs(ID TEXT, Source TEXT, Source2Index TEXT, Target_1036 TEXT, "
            "Status_1036 INTEGER, Comments_1036 TEXT, Percentage_1036 INTEGER, Done YESNO, "
            "FileID INTEGER, Selected BOOLEAN); CREATE INDEX iID ON Pairs(ID);"
            "CREATE TABLE Files(ID INTEGER, FileName TEXT, FileSpec TEXT);"
            "CREATE TABLE Stamp(sLang INTEGER, sSubLang INTEGER); INSERT INTO Stamp VALUES(9, 1);"
            "CREATE TABLE Reimporting(ID TEXT, Source TEXT);"
            "INSERT INTO Reimporting VALUES('old', 'an earlier import');";
        std::string rtf = testing::Head + "\\pard ID\\cell Source\\cell Target\\cell\\row\n";
        for (int i = 0; i < rows; ++i) {
            const std::string id = std::to_string(i);
            const std::string text = "text " + id + std::string(textSize, 'x');
            sql += "INSERT INTO Pairs VALUES('" + id + "','" + text + "','" + text + "','" + text +
                   "',1,'c',100,0,1,-1);";
            rtf += "{\\pard\\intbl " + id + "}\\cell " + text + "\\cell " + text +
                   (i % 2 == 0 ? "" : " changed") + "\\cell\\row\n";
        }
        EXPECT_EQ(Rows(database, (sql + "COMMIT").c_str()), "");
        sqlite3_close(database);
        WriteFile(reviewed, rtf + "}");
        Restore();
    }

    /// The project as it was before the import.
    void Restore() const {
        std::filesystem::remove(path + "-journal");
        std::filesystem::copy_file(original, path,
                                   std::filesystem::copy_options::overwrite_existing);
    }

    Contents Look() const {
        const PlainConnection database(path);
        return {Rows(database.Get(), "SELECT * FROM Pairs"),
                Rows(database.Get(), "SELECT * FROM Reimporting"),
                Rows(database.Get(), "PRAGMA integrity_check")};
    }

    std::u16string Path() const { return folder.Path(u"project.gu"); }
    std::u16string Reviewed() const { return folder.Path(u"reviewed.rtf"); }
    const std::string& NativePath() const { return path; }

  private:
    TemporaryFolder folder;
    const std::string original = folder / "original.gu";
    const std::string path = folder / "project.gu";
    const std::string reviewed = folder / "reviewed.rtf";
};

}  // namespace generalutilities::fire
