// The walk over a reviewed file takes its rows as the import takes them, comment and status carried
// over from row to row where a row has no such cells, but goes on where the import stops.

#include <generalutilities/error.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/segment_text.h>
#include <generalutilities/project/line_ends.h>
#include <generalutilities/project/review_report.h>

#include "extview/rtf/rtf_import.h"
#include "extview/rtf/twb_import.h"
#include "platform/files/utf8.h"
#include "project/project_access.h"

#include <algorithm>
#include <unordered_map>

namespace generalutilities {
namespace {

constexpr std::size_t RequiredCells = 3;  // one more than the table's own: see `CRTFImport::Cells`
constexpr std::size_t CellsWithComments = 4;
constexpr std::size_t CellsWithStatus = 5;

/// The project's rows by identifier.
class StoredRows {
  public:
    StoredRows(Database& opened, std::int32_t langId)
        : database(opened),
          pairs(opened, u"Pairs", RecordsetType::Table),
          source(pairs.Field(u"Source")),
          target(pairs.Field(LanguageColumn(u"Target", langId))),
          comments(pairs.Field(LanguageColumn(u"Comments", langId))),
          status(pairs.Field(LanguageColumn(u"Status", langId))),
          fileId(pairs.Field(u"FileID")) {}

    bool Find(std::u16string_view id) { return pairs.Seek(id); }
    std::u16string Source() { return StripCodeMarkers(pairs.Text(source)); }
    std::u16string Target() { return StripCodeMarkers(pairs.Text(target)); }
    std::u16string Comments() { return std::u16string(pairs.Text(comments)); }
    std::int32_t Status() { return pairs.Long(status); }
    bool IsLexicon() { return pairs.Long(fileId) == Lexicon; }
    std::uint64_t Count() { return pairs.Count(); }
    std::uint64_t CountOfLexicon() {
        return TableReader(database, u"SELECT ID FROM Pairs WHERE FileID = -1",
                           RecordsetType::Dynaset)
            .Count();
    }

  private:
    Database& database;
    TableReader pairs;
    int source;
    int target;
    int comments;
    int status;
    int fileId;
};

/// The rows of a reviewed file, of either form.
class FileRows {
  public:
    virtual ~FileRows() = default;
    virtual CExternalViewImport& Import() = 0;
    virtual CRTFReader& Reader() = 0;
    /// Reads a row whatever there is of it; false when the file has ended.
    virtual bool Read() = 0;
    /// Identifier, source, target, and then what there is of comment and status: see
    /// `CRTFImport::Cells`. When the file has ended, those of a row that it cuts off.
    virtual std::span<const std::u16string> Cells() = 0;
    /// Whether the row holds more than one.
    virtual bool IsDamaged() const { return false; }
    /// Control words without which a file has no rows.
    virtual std::span<const std::string_view> NeededWords() const = 0;
};

class TableRows final : public FileRows {
  public:
    CExternalViewImport& Import() override { return file; }
    CRTFReader& Reader() override { return file; }
    bool Read() override { return file.ReadCells(); }
    std::span<const std::u16string> Cells() override { return file.Cells(); }
    std::span<const std::string_view> NeededWords() const override {
        static constexpr std::string_view Words[] = {"\\fonttbl", "\\stylesheet", "\\row"};
        return Words;
    }

  private:
    CRTFImport file;
};

class BilingualRows final : public FileRows {
  public:
    CExternalViewImport& Import() override { return file; }
    CRTFReader& Reader() override { return file; }
    bool Read() override {
        std::int32_t status = -1;
        isCutOff = !file.NextRow(cells[0], cells[1], cells[2], cells[3], status);
        return !isCutOff;
    }
    std::span<const std::u16string> Cells() override {
        if (!isCutOff) {
            return cells;
        }
        file.ReadId(cells[0]);
        return std::span(cells).first(file.CellCount() == 0 ? 1 : 2);
    }
    bool IsDamaged() const override { return file.CellCount() != rtf::TwbCells::CellsOfRow; }
    std::span<const std::string_view> NeededWords() const override { return {}; }

  private:
    CTWBImport file;
    std::array<std::u16string, 4> cells;
    bool isCutOff = false;
};

std::unique_ptr<FileRows> RowsOf(const PreparedFile& prepared) {
    if (prepared.IsBilingual()) {
        return std::make_unique<BilingualRows>();
    }
    return std::make_unique<TableRows>();
}

class ReportWalk {
  public:
    ReportWalk(Database& database, const PreparedFile& prepared, std::int32_t langId,
               const std::function<void(const ReviewedRow&)>& rowSink,
               const std::function<void(int)>& percentSink)
        : rows(RowsOf(prepared)),
          import(rows->Import()),
          file(rows->Reader()),
          stored(database, langId),
          preparation(prepared.Preparation()),
          name(files::ToUtf8Lossy(prepared.Name())),
          row(rowSink),
          percent(percentSink) {
        import.SetSource(prepared.Path(), langId);
    }

    ReviewSummary Run() {
        Open();
        bool hasMore = true;
        while (hasMore) {
            hasMore = rows->Read();
            if (hasMore) {
                ReadRow(rows->Cells());
                TellPercent();
            }
        }
        if (import.FileIsDamaged()) {
            throw Error(ErrorReadFault, name + ": cannot be read behind byte offset " +
                                            std::to_string(OriginalPosition()));
        }
        const bool hasOpenRow = rows->Cells().size() > 1;  // cells, and no end of their row
        summary.endsInsideRow = hasOpenRow || LacksEnd();
        if (hasOpenRow) {
            stopped = true;
            ReadRow(rows->Cells());
        }
        import.CloseFile();
        CountMissing();
        return summary;
    }

  private:
    void Open() {
        if (!import.OpenFile()) {
            throw Error(everrUnableToOpenFile,
                        name + ": cannot be opened; is it a file, and may it be read?");
        }
        if (!import.ReadHeader()) {
            throw Error(everrNotEnoughFieldsPresent, name + ": " + WhyNoTable());
        }
    }

    /// What is missing in a file that cannot be read as a table.
    std::string WhyNoTable() {
        if (LacksEnd()) {
            return "the file ends at byte offset " +
                   std::to_string(preparation.OriginalOffset(0, file.FileSize())) +
                   ", before the first row of an RTF table; was it cut off on its way?";
        }
        for (const std::string_view word : rows->NeededWords()) {
            if (file.FindInFile(0, word) == RtfFilePager::NotFound) {
                return "is no reviewed table: there is no \"" + std::string(word) +
                       "\" in it; save the whole document with the table as Rich Text Format (RTF)";
            }
        }
        return "is no reviewed table: font table, style sheet and heading row do not follow each "
               "other; save the document with the table as Rich Text Format (RTF)";
    }

    /// A file holds segments, or the lexicon, or both: what it holds none of was not exported.
    void CountMissing() {
        const std::uint64_t lexicon = stored.CountOfLexicon();
        const std::uint64_t segments = stored.Count() - std::min(lexicon, stored.Count());
        if (knownLexicon == 0 || knownSegments > 0) {
            summary.notInFile += segments - std::min(segments, knownSegments);
        }
        if (knownLexicon > 0) {
            summary.notInFile += lexicon - std::min(lexicon, knownLexicon);
        }
    }

    /// Whether the file does not end as an RTF file does, with the brace that closes it.
    bool LacksEnd() {
        std::uint32_t end = file.FileSize();
        const auto isPadding = [](char byte) { return byte >= 0 && byte <= ' '; };
        while (end > 0 && isPadding(file.ByteAt(end - 1))) {
            --end;
        }
        return end == 0 || file.ByteAt(end - 1) != '}';
    }

    void TellPercent() {
        const int now =
            file.FileSize() == 0
                ? 100
                : static_cast<int>(std::uint64_t{file.Position()} * 100 / file.FileSize());
        if (percent && now != lastPercent) {
            lastPercent = now;
            percent(now);
        }
    }

    /// The position in the reviewed file, of which the row `summary.rows` is being read.
    std::uint64_t OriginalPosition() {
        return preparation.OriginalOffset(summary.rows, file.Position());
    }

    void ReadRow(std::span<const std::u16string> cells) {
        ReviewedRow reviewed;
        reviewed.number = ++summary.rows;
        reviewed.offset = OriginalPosition();
        const bool complete = cells.size() >= RequiredCells;
        reviewed.id = cells.empty() ? std::u16string_view() : cells[0];
        reviewed.marksDamaged = rows->IsDamaged();
        if (complete) {
            reviewed.source = cells[1];
            reviewed.target = cells[2];
        }
        if (stopped) {
            reviewed.outcome = RowOutcome::NotRead;
            ++summary.notRead;
        } else if (!complete) {
            reviewed.outcome = RowOutcome::TooFewCells;
            ++summary.tooFewCells;
            stopped = true;
        } else {
            CarryOver(cells);
            reviewed.comments = comments;
            if (status != -1) {
                reviewed.status = status;
            }
            LookUp(reviewed);
            return;
        }
        row(reviewed);
    }

    void CarryOver(std::span<const std::u16string> cells) {
        if (cells.size() >= CellsWithComments) {
            comments = cells[3];
            status = cells.size() >= CellsWithStatus ? CRTFImport::StatusOf(cells[4]) : -1;
        }
    }

    /// Compares a row with the project's and reports it.
    void LookUp(ReviewedRow& reviewed) {
        const auto [first, isNew] =
            firstRows.try_emplace(std::u16string(reviewed.id), summary.rows);
        if (!isNew) {
            reviewed.firstRowOfId = first->second;
            ++summary.repeatedIds;
        }
        if (!stored.Find(reviewed.id)) {
            reviewed.outcome = RowOutcome::UnknownId;
            ++summary.unknownIds;
            row(reviewed);
            return;
        }
        (stored.IsLexicon() ? knownLexicon : knownSegments) += isNew ? 1 : 0;
        const std::u16string source = stored.Source();
        const std::u16string target = stored.Target();
        const std::u16string storedComments = stored.Comments();
        reviewed.storedSource = source;
        reviewed.storedTarget = target;
        reviewed.storedComments = storedComments;
        reviewed.storedStatus = stored.Status();
        Compare(reviewed);
        row(reviewed);
    }

    void Compare(ReviewedRow& reviewed) {
        if (reviewed.target == reviewed.storedTarget) {
            reviewed.outcome = RowOutcome::Unchanged;
            ++summary.unchanged;
        } else if (EqualButForLineEnds(reviewed.target, reviewed.storedTarget)) {
            reviewed.outcome = RowOutcome::LineEndsOnly;
            ++summary.lineEndsOnly;
        } else {
            reviewed.outcome = RowOutcome::Changed;
            ++summary.changed;
        }
        const auto count = [](bool holds, std::uint64_t& number) {
            number += holds ? 1 : 0;
            return holds;
        };
        reviewed.sourceChanged = count(!EqualButForLineEnds(reviewed.source, reviewed.storedSource),
                                       summary.sourceChanged);
        // An emptied comment does not come back: the stored one stays.
        reviewed.commentsChanged =
            count(!reviewed.comments.empty() &&
                      !EqualButForLineEnds(reviewed.comments, reviewed.storedComments),
                  summary.commentsChanged);
        reviewed.statusChanged = count(reviewed.status && *reviewed.status != reviewed.storedStatus,
                                       summary.statusChanged);
        reviewed.locked = count((reviewed.storedStatus & StatusLocked) != 0, summary.locked);
        count(reviewed.locked && reviewed.outcome == RowOutcome::Changed, summary.lockedChanged);
        if (!reviewed.target.empty()) {
            reviewed.codes = CompareCodes(reviewed.storedSource, reviewed.target);
            reviewed.codesDifferedBefore =
                !reviewed.codes.empty() &&
                CompareCodes(reviewed.storedSource, reviewed.storedTarget) == reviewed.codes;
            count(!reviewed.codes.empty() && !reviewed.codesDifferedBefore, summary.codesDiffer);
        }
    }

    const std::unique_ptr<FileRows> rows;
    CExternalViewImport& import;
    CRTFReader& file;  ///< the same object
    StoredRows stored;
    const PreparedReview& preparation;
    std::string name;  ///< for messages
    const std::function<void(const ReviewedRow&)>& row;
    const std::function<void(int)>& percent;
    ReviewSummary summary;
    std::unordered_map<std::u16string, std::uint64_t> firstRows;
    std::uint64_t knownSegments = 0;
    std::uint64_t knownLexicon = 0;
    bool stopped = false;  ///< an import has stopped reading
    std::u16string comments;
    std::int32_t status = -1;
    int lastPercent = -1;
};

}  // namespace

ReviewSummary ReviewFile(Database& database, std::u16string_view path, std::int32_t langId,
                         const std::function<void(const ReviewedRow&)>& row,
                         const std::function<void(int percent)>& percent) {
    return ReviewFile(database, PreparedFile::AsIs(path), langId, row, percent);
}

ReviewSummary ReviewFile(Database& database, const PreparedFile& file, std::int32_t langId,
                         const std::function<void(const ReviewedRow&)>& row,
                         const std::function<void(int percent)>& percent) {
    RequireLanguage(database, langId);
    return ReportWalk(database, file, langId, row, percent).Run();
}

std::optional<std::uint64_t> CountReimportedRows(Database& database) {
    if (!HasTable(database, u"Reimporting")) {
        return std::nullopt;
    }
    return TableReader(database, u"Reimporting", RecordsetType::Table).Count();
}

std::string CheckReimportedRows(Database& database, const ReviewSummary& summary) {
    const auto count = CountReimportedRows(database);
    if (!count) {
        return "the import left no table Reimporting in the project";
    }
    if (*count == summary.RowsToStore()) {
        return {};
    }
    return "the import stored " + std::to_string(*count) + " rows, but the file holds " +
           std::to_string(summary.RowsToStore()) + " rows that the project knows";
}

}  // namespace generalutilities
