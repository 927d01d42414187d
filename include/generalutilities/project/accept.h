#pragma once

#include <generalutilities/database.h>
#include <generalutilities/project/segment_codes.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The rows of the latest import, and taking them over into the project.
///
/// An import leaves its rows in the table `Reimporting` and changes nothing else. What is accepted
/// goes into `Pairs` here, in one transaction: all of it or nothing.
namespace generalutilities {

/// A row of `Reimporting`. The texts are valid only during the call.
struct ReimportedRow {
    std::u16string_view id;
    std::u16string_view existingSource, source;  ///< the stored one with its hidden parts
    std::u16string_view existingTarget, target;
    std::u16string_view comments;
    std::int32_t status = 0;
    bool sourceHasChanged = false;
    bool targetHasChanged = false;
    bool accept = false;
};

/// Walks `Reimporting` in its own order. Throws `Error` without that table.
void ReadReimportedRows(Database& database, const std::function<void(const ReimportedRow&)>& row);

/// The language of the latest import, as far as the rows tell: the project's only language, or the
/// only one whose targets are those that the import found or brought. Nothing when several would
/// do.
std::optional<std::int32_t> LanguageOfReimport(Database& database);

/// What is taken over, and how strictly.
struct AcceptOptions {
    std::int32_t langId = 0;
    /// Only these identifiers; empty: all rows.
    std::vector<std::u16string> ids;
    bool includeLocked = false;      ///< also rows that the import did not mark as accepted
    bool refuseCodeChanges = false;  ///< leave rows whose codes differ from the source's
    bool dryRun = false;             ///< decide and report, and change nothing
};

/// What became of a row.
enum class AcceptOutcome {
    Taken,        ///< taken over
    Unchanged,    ///< nothing to take over
    NotAccepted,  ///< `Accept` is false: a locked row
    Refused,      ///< see `reason`
};

/// What became of a row of `Reimporting`. The texts are valid only during the call.
struct AcceptedRow {
    std::u16string_view id;
    AcceptOutcome outcome = AcceptOutcome::Taken;
    std::u16string_view oldTarget;      ///< as stored before
    std::u16string_view newTarget;      ///< as stored now
    std::string reason;                 ///< UTF-8, for people; why a row was refused
    std::vector<CodeDifference> codes;  ///< of the new target against the stored source
    bool sourceEdited = false;          ///< the reviewer changed the source, which stays as it was
};

/// The counts of a run.
struct AcceptSummary {
    std::uint64_t rows = 0;  ///< rows of `Reimporting` that were looked at
    std::uint64_t taken = 0;
    std::uint64_t unchanged = 0;
    std::uint64_t notAccepted = 0;
    std::uint64_t refused = 0;
    std::uint64_t codesDiffer = 0;  ///< of the rows taken
    std::uint64_t sourceEdited = 0;
    std::vector<std::u16string> unknownIds;  ///< of `AcceptOptions::ids`: not in `Reimporting`
};

/// Takes the accepted rows over: target, comment and status of one language.
///
/// A row is refused, and the others are still taken, when the project's row has changed since the
/// import, when two rows with its identifier disagree, or when a code's hidden part would be lost.
/// A target that differs only in its line ends keeps its stored form, and new line ends take the
/// form that the stored text uses. Every written row is read again before the transaction is
/// committed. Throws `Error`, with nothing changed, when the database fails.
AcceptSummary AcceptReimportedRows(Database& database, const AcceptOptions& options,
                                   const std::function<void(const AcceptedRow&)>& row);

}  // namespace generalutilities
