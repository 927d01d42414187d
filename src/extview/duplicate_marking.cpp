// Each row that is not marked yet is held against the rows with its source key. Those that are
// equal to it are marked, but for the first of them, in the order in which the query of the key
// gives them.
//
// Reading that query anew for each row is the rule in its plain form; it costs the square of the
// group's size. DuplicateGroups comes to the same marks at a linear cost, and works wherever
// identifiers tell the rows apart. The plain form is left for a damaged project where they do not.

#include "extview/duplicate_marking.h"

#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/source_key.h>

#include "extview/duplicate_groups.h"
#include "extview/duplicate_rows.h"

#include <string>

namespace generalutilities {

namespace {

constexpr std::int64_t PercentOfThisPass = 60;

void MarkRowsEqualTo(DuplicateRows& outer, Database& database, const DuplicateSearch& search) {
    const std::u16string key = MakeSourceKey(outer.Source(), search.sourceLangId);
    DuplicateRows inner(search.sourceLangId, search.targetLangId);
    if (!inner.Open(database,
                    search.queries.duplicateQuery + QuoteSql(key) + search.queries.duplicateTail) ||
        inner.IsEmpty()) {
        return;
    }
    const std::u16string sourceForm = outer.SourceForm();
    const std::u16string targetForm = outer.TargetForm();
    bool first = true;
    do {
        if (inner.Id() == outer.Id()) {
            first = false;
        } else if (inner.SourceForm() == sourceForm && inner.TargetForm() == targetForm) {
            if (!first) {
                inner.MarkDone();
            }
            first = false;
        }
    } while (inner.MoveNext());
}

// Percent values of the pass: only changes go to the sink, and each row counts once.
class PassProgress {
  public:
    PassProgress(const DuplicateSearch& search, std::int64_t rowCount)
        : progress(search.progress), targetLangId(search.targetLangId), total(rowCount) {}

    void CountRow() {
        if (progress == nullptr || counter == total) {
            return;
        }
        const std::int64_t percent = ++counter * PercentOfThisPass / total;
        if (percent != lastPercent) {
            lastPercent = percent;
            progress->ReportProgress(static_cast<std::int32_t>(percent), targetLangId);
        }
    }

  private:
    IExtViewProgress* const progress;
    const std::int32_t targetLangId;
    const std::int64_t total;
    std::int64_t counter = 0;
    std::int64_t lastPercent = -1;
};

}  // namespace

bool MarkDuplicates(Database& database, const DuplicateSearch& search) {
    std::u16string reset = u"UPDATE Pairs SET Done = 0";
    if (search.fileId != AllFiles && search.fileId != EveryFile) {
        reset.append(u" ").append(search.queries.whereClause);
    }
    database.Execute(reset);
    if (!search.uniquePairsOnly) {
        return true;
    }

    DuplicateRows outer(search.sourceLangId, search.targetLangId);
    if (!outer.Open(database, search.queries.mainQuery)) {
        return false;
    }
    if (outer.IsEmpty()) {
        return true;
    }
    PassProgress progress(search, outer.Count());
    DuplicateGroups groups(database, search);
    if (groups.Decide(outer, [&progress] { progress.CountRow(); })) {
        groups.WriteMarks();
        return true;
    }
    do {
        if (!outer.IsDone()) {
            MarkRowsEqualTo(outer, database, search);
        }
        progress.CountRow();
    } while (outer.MoveNext());
    return true;
}

}  // namespace generalutilities
