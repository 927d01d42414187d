#pragma once

#include <generalutilities/database.h>
#include <generalutilities/extview/source_key.h>
#include <generalutilities/text_file.h>

#include "database/temporary_folder.h"
#include "extview/dao_recordset.h"
#include "extview/progress.h"
#include "extview/row_selection.h"
#include "text/decimal.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A project in a file of its own, filled row by row, and the ends of an export that tests look at.
namespace generalutilities {

struct PairRow {
    std::u16string id;
    std::u16string source;
    std::optional<std::u16string> target = {};
    std::int32_t status = 0;
    std::optional<std::u16string> comments = {};
    std::int32_t fileId = 1;
    bool selected = true;
    std::optional<std::u16string> sourceKey = {};  ///< by default the one of the source
    std::int32_t percentage = 0;
};

class TestProject {
  public:
    explicit TestProject(std::int32_t targetLangId = 1036) : language(Decimal(targetLangId)) {
        DatabaseFailure failure;
        opened = OpenDatabase(folder.Path(u"p.db"), OpenMode::Create, failure);
        Execute(u"CREATE TABLE Pairs (ID TEXT, Source MEMO, Source2Index TEXT, Target_" + language +
                u" MEMO, Status_" + language + u" LONG, Comments_" + language +
                u" MEMO, Percentage_" + language +
                u" LONG, Done YESNO, FileID LONG, Selected YESNO, LexWords LONG, Freq LONG)");
        Execute(u"CREATE TABLE Files (ID LONG, FileName TEXT, FileSpec TEXT)");
        Execute(u"CREATE TABLE Stamp (sLang LONG, sSubLang LONG)");
        Execute(u"CREATE INDEX iID ON Pairs (ID)");
        Execute(u"CREATE INDEX iSource2Index ON Pairs (Source2Index)");
    }
    Database& database() { return *opened; }

    void Execute(std::u16string_view query) {
        EXPECT_TRUE(opened->Execute(query)) << testing::PrintToString(query);
    }

    void Add(const std::vector<PairRow>& rows) {
        const auto text = [](const std::optional<std::u16string>& value) {
            return value ? u"'" + QuoteSql(*value) + u"', " : u"NULL, ";
        };
        ASSERT_TRUE(opened->BeginTrans());
        for (const auto& row : rows) {
            Execute(
                u"INSERT INTO Pairs (ID, Source, Source2Index, Target_" + language +
                u", Comments_" + language + u", Status_" + language + u", Percentage_" + language +
                u", FileID, Selected, Done) VALUES (" + text(row.id) + text(row.source) +
                text(row.sourceKey.value_or(MakeSourceKey(row.source, 1033))) + text(row.target) +
                text(row.comments) + Decimal(row.status) + u", " + Decimal(row.percentage) + u", " +
                Decimal(row.fileId) + (row.selected ? u", True, False)" : u", False, False)"));
        }
        ASSERT_TRUE(opened->CommitTrans());
    }

    void RemoveRows() { Execute(u"DELETE FROM Pairs"); }

    /// The identifiers of the rows with `Done`, in the order of the table.
    std::vector<std::u16string> DoneRows() {
        DaoRecordset rows;
        std::vector<std::u16string> done;
        rows.Open(*opened, u"SELECT ID FROM Pairs WHERE Done = True", true);
        rows.BindField(1, u"ID");
        for (bool more = !rows.IsEmpty(); more; more = rows.MoveNext()) {
            done.emplace_back(rows.GetString(1).value_or(std::u16string_view()));
        }
        return done;
    }

  private:
    const std::u16string language;
    TemporaryFolder folder;
    std::unique_ptr<Database> opened;
};

class PercentList final : public IExtViewProgress {
  public:
    void ReportProgress(std::int32_t percent, std::int32_t langId) override {
        percents.push_back(percent);
        targetLangId = langId;
    }
    std::vector<std::int32_t> percents;
    std::int32_t targetLangId = 0;
};

/// What a stream was given.
struct Written {
    std::u16string path;
    TextFileFormat format = {};
    std::vector<std::u16string> pieces = {};  ///< one a Write
    bool closed = false;
    bool released = false;
};

/// A factory of streams that keep everything in memory.
class MemoryFactory final : public TextFileFactory {
  public:
    explicit MemoryFactory(Written& target) : written(target) {}

    std::unique_ptr<TextFileStream> OpenTextFile(std::u16string_view path,
                                                 TextFileFormat format) override {
        written = {.path = std::u16string(path), .format = format};
        return std::make_unique<Stream>(written);
    }

  private:
    class Stream final : public TextFileStream {
      public:
        explicit Stream(Written& target) : written(target) {}
        ~Stream() override { written.released = true; }
        bool Write(std::u16string_view text) override {
            written.pieces.emplace_back(text);
            return true;
        }
        bool Close() override { return written.closed = true; }

      private:
        Written& written;
    };

    Written& written;
};

}  // namespace generalutilities
