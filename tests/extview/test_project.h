#pragma once

#include <generalutilities/database.h>
#include <generalutilities/extview/source_key.h>
#include <generalutilities/text_file.h>

#include "database/temporary_folder.h"
#include "extview/dao_recordset.h"
#include "extview/progress.h"
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
        auto pairs = opened->OpenRecordset(u"Pairs", RecordsetType::Table);
        ASSERT_TRUE(pairs);
        ASSERT_TRUE(opened->BeginTrans());
        const auto put = [&](std::u16string_view name, const FieldValue& value) {
            EXPECT_TRUE(pairs->PutValue(pairs->FieldIndex(name).value(), value));
        };
        const auto text = [](const std::optional<std::u16string>& value) {
            return value ? FieldValue(std::u16string_view(*value)) : FieldValue();
        };
        for (const auto& row : rows) {
            const std::u16string key = row.sourceKey.value_or(MakeSourceKey(row.source, 1033));
            ASSERT_TRUE(pairs->AddNew());
            put(u"ID", std::u16string_view(row.id));
            put(u"Source", std::u16string_view(row.source));
            put(u"Source2Index", std::u16string_view(key));
            put(u"Target_" + language, text(row.target));
            put(u"Status_" + language, row.status);
            put(u"Comments_" + language, text(row.comments));
            put(u"Percentage_" + language, row.percentage);
            put(u"Done", false);
            put(u"FileID", row.fileId);
            put(u"Selected", row.selected);
            ASSERT_TRUE(pairs->Update());
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
