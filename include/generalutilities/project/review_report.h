#pragma once

#include <generalutilities/database.h>
#include <generalutilities/project/prepared_file.h>
#include <generalutilities/project/segment_codes.h>

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a reviewed RTF table or bilingual document says about a project, row by row.
///
/// An import is quiet about what it leaves out. This report is made from the file itself: it walks
/// every row that stands there, also those behind the place where an import stops reading, and
/// looks each one up in the project, which it does not change.
namespace generalutilities {

/// What becomes of a row of the file.
enum class RowOutcome {
    Unchanged,     ///< the target is as it went out
    LineEndsOnly,  ///< the target differs, but only in how its line ends are written
    Changed,       ///< the target differs
    UnknownId,     ///< the project has no such row; an import leaves it out
    TooFewCells,   ///< the row has fewer than two cells; an import stops reading here
    NotRead,       ///< a row behind such a row, or cut off by the end of the file
};

/// A row of the file. The texts are valid only during the call.
struct ReviewedRow {
    std::uint64_t number = 0;  ///< 1 for the first row behind the heading row
    std::uint64_t offset = 0;  ///< where the row ends: the byte offset in the reviewed file
    RowOutcome outcome = RowOutcome::Unchanged;
    std::u16string_view id;
    std::u16string_view source, target, comments;  ///< as the file has them
    std::optional<std::int32_t> status;            ///< from the file; nothing when it has none
    /// As the project has them, without the hidden parts of codes; empty for an unknown row.
    std::u16string_view storedSource, storedTarget, storedComments;
    std::int32_t storedStatus = 0;
    bool sourceChanged = false;
    bool commentsChanged = false;
    bool statusChanged = false;
    /// Of a bilingual document that was not prepared: the row is put together from several.
    bool marksDamaged = false;
    bool locked = false;                        ///< an import does not mark the row as accepted
    std::optional<std::uint64_t> firstRowOfId;  ///< an earlier row with the same identifier
    /// The codes of the file's target against the stored source; empty for an empty target.
    std::vector<CodeDifference> codes;
    bool codesDifferedBefore = false;  ///< the stored target had the same differences
};

/// The counts of a file.
struct ReviewSummary {
    std::uint64_t rows = 0;  ///< all rows of the file but the heading
    std::uint64_t unchanged = 0;
    std::uint64_t lineEndsOnly = 0;
    std::uint64_t changed = 0;
    std::uint64_t unknownIds = 0;
    std::uint64_t tooFewCells = 0;
    std::uint64_t notRead = 0;
    std::uint64_t sourceChanged = 0;
    std::uint64_t commentsChanged = 0;
    std::uint64_t statusChanged = 0;
    std::uint64_t locked = 0;  ///< of all known rows
    std::uint64_t lockedChanged = 0;
    std::uint64_t repeatedIds = 0;  ///< rows whose identifier stood in an earlier row
    std::uint64_t codesDiffer = 0;  ///< rows with a new difference in codes
    std::uint64_t notInFile = 0;    ///< segments (or lexicon rows) that the file lacks
    bool endsInsideRow = false;     ///< the end of the file is missing
    /// How many rows an import of this file stores.
    std::uint64_t RowsToStore() const { return unchanged + lineEndsOnly + changed; }
};

/// Walks the file and calls `row` for each of its rows. `percent` (may be empty) is told 0 to 100.
/// Throws `Error` when the file cannot be opened, is no RTF table, or the project lacks the
/// language.
ReviewSummary ReviewFile(Database& database, std::u16string_view path, std::int32_t langId,
                         const std::function<void(const ReviewedRow&)>& row,
                         const std::function<void(int percent)>& percent = {});
/// The same for a prepared file: it reads the copy and tells the offsets and the name of the file.
ReviewSummary ReviewFile(Database& database, const PreparedFile& file, std::int32_t langId,
                         const std::function<void(const ReviewedRow&)>& row,
                         const std::function<void(int percent)>& percent = {});

/// How many rows the table `Reimporting` holds; nothing without that table.
std::optional<std::uint64_t> CountReimportedRows(Database& database);

/// Compares what an import stored with what the report expects: an empty text when they agree,
/// otherwise what is missing, for people.
std::string CheckReimportedRows(Database& database, const ReviewSummary& summary);

/// What stands at the head of a written report.
struct ReportHeading {
    std::u16string project;
    std::u16string file;
    std::int32_t langId = 0;
    bool dryRun = false;
};

/// Writes a report row by row: first `Met` for all that the preparation met, then `Row` for each
/// row, `Finish` at the end. Output is UTF-8.
class ReportWriter {
  public:
    virtual ~ReportWriter() = default;
    virtual void Met(const ReviewFindingPlace& place) = 0;
    virtual void Row(const ReviewedRow& row) = 0;
    virtual void Finish(const ReviewSummary& summary) = 0;
};

/// A table of all rows as tab-separated text, a line a row, with the summary behind it.
std::unique_ptr<ReportWriter> CreateTextReport(std::ostream& output, const ReportHeading& heading);
/// One self-contained page with the changed words marked.
std::unique_ptr<ReportWriter> CreateHtmlReport(std::ostream& output, const ReportHeading& heading);

/// One JSON document, "genutil.import/1", described in docs/projects.md.
std::unique_ptr<ReportWriter> CreateJsonReport(std::ostream& output, const ReportHeading& heading);

/// The summary as sentences, one a line; lines about nothing are left out.
std::string DescribeSummary(const ReviewSummary& summary);

/// The word that the reports use for an outcome: "unchanged", "changed", "unknown-id", ...
std::string_view OutcomeName(RowOutcome outcome);

}  // namespace generalutilities
