// Two walks over `Reimporting`: the first finds identifiers whose rows disagree, the second decides
// each row and writes. Deciding and writing happen in one transaction, so that what was compared is
// what is replaced.

#include <generalutilities/error.h>
#include <generalutilities/extview/segment_text.h>
#include <generalutilities/project/accept.h>
#include <generalutilities/project/contents.h>
#include <generalutilities/project/line_ends.h>

#include "platform/files/utf8.h"
#include "project/project_access.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace generalutilities {
namespace {

class ReimportedRows {
  public:
    explicit ReimportedRows(Database& database)
        : table(Require(database), u"Reimporting", RecordsetType::Table),
          id(table.Field(u"ID")),
          existingSource(table.Field(u"ExistingSource")),
          source(table.Field(u"Source")),
          existingTarget(table.Field(u"ExistingTarget")),
          target(table.Field(u"Target")),
          comments(table.Field(u"Comments")),
          status(table.Field(u"Status")),
          sourceHasChanged(table.Field(u"SourceHasChanged")),
          targetHasChanged(table.Field(u"TargetHasChanged")),
          accept(table.Field(u"Accept")) {}

    bool AtEnd() { return table.AtEnd(); }
    void MoveNext() { table.MoveNext(); }
    ReimportedRow Row() {
        return {table.Text(id),
                table.Text(existingSource),
                table.Text(source),
                table.Text(existingTarget),
                table.Text(target),
                table.Text(comments),
                table.Long(status),
                table.Bool(sourceHasChanged),
                table.Bool(targetHasChanged),
                table.Bool(accept)};
    }

  private:
    static Database& Require(Database& database) {
        if (!HasTable(database, u"Reimporting")) {
            throw Error(ErrorInvalidData,
                        "the project has no table Reimporting; import a reviewed file first");
        }
        return database;
    }

    TableReader table;
    int id;
    int existingSource;
    int source;
    int existingTarget;
    int target;
    int comments;
    int status;
    int sourceHasChanged;
    int targetHasChanged;
    int accept;
};

/// Whether a row brings another target than the stored one, line ends aside.
bool HasNewTarget(const ReimportedRow& row) {
    return row.targetHasChanged &&
           !EqualButForLineEnds(row.target, StripCodeMarkers(row.existingTarget));
}

/// Whether a row's new target is the stored one already.
bool IsTakenOver(const ReimportedRow& row, std::u16string_view storedTarget) {
    return HasNewTarget(row) && EqualButForLineEnds(row.target, StripCodeMarkers(storedTarget));
}

/// The identifiers that `AcceptOptions` chooses, and which of them were met.
class Selection {
  public:
    explicit Selection(const std::vector<std::u16string>& ids) : chosen(ids) {
        for (const std::u16string& id : ids) {
            missing.insert(id);
        }
    }
    bool Has(std::u16string_view id) {
        if (chosen.empty()) {
            return true;
        }
        missing.erase(std::u16string(id));
        return all.contains(std::u16string(id));
    }
    std::vector<std::u16string> Missing() const {
        std::vector<std::u16string> ids;
        std::copy_if(chosen.begin(), chosen.end(), std::back_inserter(ids),
                     [this](const auto& id) { return missing.contains(id); });
        return ids;
    }

  private:
    const std::vector<std::u16string>& chosen;
    std::unordered_set<std::u16string> all{chosen.begin(), chosen.end()};
    std::unordered_set<std::u16string> missing;
};

/// What a row would write.
struct Proposal {
    std::u16string target;
    std::u16string comments;
    std::int32_t status = 0;
};

class Acceptance {
  public:
    Acceptance(Database& opened, const AcceptOptions& chosen,
               const std::function<void(const AcceptedRow&)>& sink)
        : database(opened),
          options(chosen),
          report(sink),
          selection(chosen.ids),
          pairs(opened, u"Pairs", RecordsetType::Table),
          targetField(pairs.Field(LanguageColumn(u"Target", chosen.langId))),
          commentsField(pairs.Field(LanguageColumn(u"Comments", chosen.langId))),
          statusField(pairs.Field(LanguageColumn(u"Status", chosen.langId))),
          sourceField(pairs.Field(u"Source")) {}

    AcceptSummary Run() {
        FindDisagreements();
        ReimportedRows rows(database);
        for (; !rows.AtEnd(); rows.MoveNext()) {
            const ReimportedRow row = rows.Row();
            if (selection.Has(row.id)) {
                ++summary.rows;
                Decide(row);
            }
        }
        summary.unknownIds = selection.Missing();
        return summary;
    }

  private:
    /// Rows with one identifier and two new targets: neither can be chosen over the other.
    void FindDisagreements() {
        std::unordered_map<std::u16string, std::u16string> targets;
        ReimportedRows rows(database);
        for (; !rows.AtEnd(); rows.MoveNext()) {
            const ReimportedRow row = rows.Row();
            if (HasNewTarget(row)) {
                const auto [first, isNew] = targets.try_emplace(std::u16string(row.id), row.target);
                if (!isNew && first->second != row.target) {
                    disagreeing.insert(first->first);
                }
            }
        }
    }

    void Decide(const ReimportedRow& row) {
        AcceptedRow result;
        result.id = row.id;
        result.sourceEdited =
            row.sourceHasChanged &&
            !EqualButForLineEnds(row.source, StripCodeMarkers(row.existingSource));
        if (!pairs.Seek(row.id)) {
            Refuse(result, "the project has no such row any more");
            return;
        }
        // The views of `pairs` end with the first change, so the stored texts are copied.
        const std::u16string storedTarget(pairs.Text(targetField));
        const std::u16string storedSource(pairs.Text(sourceField));
        const std::u16string storedComments(pairs.Text(commentsField));
        result.oldTarget = storedTarget;
        result.newTarget = storedTarget;

        Proposal proposal{storedTarget, storedComments, row.status};
        const bool newComments =
            !row.comments.empty() && !EqualButForLineEnds(row.comments, storedComments);
        if (newComments) {
            proposal.comments = WithLineEndsOf(row.comments, storedComments);
        }
        const bool newTarget = HasNewTarget(row);
        const bool changedSince = row.existingTarget != storedTarget;
        // Taken over before: by an equal row of this walk, or by an earlier one.
        if (taken.contains(std::u16string(row.id)) || IsTakenOver(row, storedTarget) ||
            (!newTarget && !newComments &&
             (changedSince || row.status == pairs.Long(statusField)))) {
            result.outcome = AcceptOutcome::Unchanged;
            ++summary.unchanged;
            report(result);
            return;
        }
        if (!row.accept && !options.includeLocked) {
            result.outcome = AcceptOutcome::NotAccepted;
            ++summary.notAccepted;
            report(result);
            return;
        }
        std::string problem;
        if (changedSince) {
            problem =
                "the project's row has changed since the import, or the import was for another "
                "language; import again";
        } else if (newTarget) {
            problem = Prepare(row, storedSource, storedTarget, proposal, result);
        }
        if (!problem.empty()) {
            Refuse(result, problem);
            return;
        }
        result.newTarget = proposal.target;
        if (newTarget) {
            taken.insert(std::u16string(row.id));
        }
        if (!options.dryRun) {
            Write(row.id, proposal);
        }
        ++summary.taken;
        summary.codesDiffer += result.codes.empty() ? 0 : 1;
        summary.sourceEdited += result.sourceEdited ? 1 : 0;
        report(result);
    }

    /// Makes the target to store of the returned one; gives the reason why that cannot be.
    std::string Prepare(const ReimportedRow& row, std::u16string_view storedSource,
                        std::u16string_view storedTarget, Proposal& proposal,
                        AcceptedRow& result) const {
        if (disagreeing.contains(std::u16string(row.id))) {
            return "the reviewed file has several rows with this identifier, and their targets "
                   "differ; choose by hand";
        }
        if (!row.target.empty()) {
            result.codes = CompareCodes(StripCodeMarkers(storedSource), row.target);
        }
        if (options.refuseCodeChanges && !result.codes.empty()) {
            return "its codes differ from those of the source";
        }
        std::u16string restored;
        std::u16string missing;
        if (!RestoreHiddenCodes(row.target, storedTarget, storedSource, restored, missing)) {
            return "the hidden part of the code " + files::ToUtf8Lossy(missing) +
                   " would be lost; put the code back or change the row in the project";
        }
        proposal.target =
            WithLineEndsOf(restored, storedTarget.empty() ? storedSource : storedTarget);
        return {};
    }

    void Refuse(AcceptedRow& result, const std::string& reason) {
        result.outcome = AcceptOutcome::Refused;
        result.reason = reason;
        ++summary.refused;
        report(result);
    }

    void Write(std::u16string_view id, const Proposal& proposal) {
        pairs.Edit();
        pairs.Put(targetField, std::u16string_view(proposal.target));
        if (!proposal.comments.empty()) {
            pairs.Put(commentsField, std::u16string_view(proposal.comments));
        }
        pairs.Put(statusField, proposal.status);
        pairs.Update();
        if (!pairs.Seek(id) || pairs.Text(targetField) != proposal.target ||
            pairs.Text(commentsField) != proposal.comments ||
            pairs.Long(statusField) != proposal.status) {
            throw Error(ErrorWriteFault, "the row " + files::ToUtf8Lossy(id) +
                                             " does not read back as it was written; nothing was "
                                             "taken over");
        }
    }

    Database& database;
    const AcceptOptions& options;
    const std::function<void(const AcceptedRow&)>& report;
    Selection selection;
    TableReader pairs;
    int targetField;
    int commentsField;
    int statusField;
    int sourceField;
    std::unordered_set<std::u16string> disagreeing;
    std::unordered_set<std::u16string> taken;  ///< the identifiers with a new target so far
    AcceptSummary summary;
};

}  // namespace

void ReadReimportedRows(Database& database, const std::function<void(const ReimportedRow&)>& row) {
    ReimportedRows rows(database);
    for (; !rows.AtEnd(); rows.MoveNext()) {
        row(rows.Row());
    }
}

std::optional<std::int32_t> LanguageOfReimport(Database& database) {
    const std::vector<std::int32_t> languages = ProjectLanguages(database);
    if (languages.size() == 1) {
        return languages.front();
    }
    TableReader pairs(database, u"Pairs", RecordsetType::Table);
    std::vector<std::pair<std::int32_t, int>> candidates;  // with the fields of their targets
    candidates.reserve(languages.size());
    for (const std::int32_t langId : languages) {
        candidates.emplace_back(langId, pairs.Field(LanguageColumn(u"Target", langId)));
    }
    ReimportedRows rows(database);
    for (; !rows.AtEnd() && !candidates.empty(); rows.MoveNext()) {
        const ReimportedRow row = rows.Row();
        if (pairs.Seek(row.id)) {
            std::erase_if(candidates, [&](const auto& candidate) {
                const std::u16string_view stored = pairs.Text(candidate.second);
                return stored != row.existingTarget && !IsTakenOver(row, stored);
            });
        }
    }
    return candidates.size() == 1 ? std::optional(candidates.front().first) : std::nullopt;
}

AcceptSummary AcceptReimportedRows(Database& database, const AcceptOptions& options,
                                   const std::function<void(const AcceptedRow&)>& row) {
    RequireLanguage(database, options.langId);
    ProjectTransaction transaction(database);
    AcceptSummary summary = Acceptance(database, options, row).Run();
    if (!options.dryRun) {
        transaction.Commit();
    }
    return summary;
}

}  // namespace generalutilities
