#pragma once

#include "database/raw_file.h"
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

class Project {
  public:
    /// `rows` segments with texts of `textSize` letters.
    Project(int rows, std::size_t textSize) {
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
        RawFile(folder.Path(u"original.gu")).Run(sql + "COMMIT");
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
        RawFile file(Path());
        file.Run("PRAGMA busy_timeout = 2000");
        return {file.Rows("SELECT * FROM Pairs"), file.Rows("SELECT * FROM Reimporting"),
                file.Rows("PRAGMA integrity_check")};
    }

    std::u16string Path() const { return folder.Path(u"project.gu"); }
    std::u16string Reviewed() const { return folder.Path(u"reviewed.rtf"); }

  private:
    TemporaryFolder folder;
    const std::string original = folder / "original.gu";
    const std::string path = folder / "project.gu";
    const std::string reviewed = folder / "reviewed.rtf";
};

}  // namespace generalutilities::fire
