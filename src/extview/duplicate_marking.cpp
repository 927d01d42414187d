// For each row that is not marked yet, the rows with the same source key are read, and those that
// are equal to it are marked. All but one, that is: in the order in which the query gives the
// group, the first of the equal rows stays.

#include "extview/duplicate_marking.h"

#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/segment_text.h>
#include <generalutilities/extview/source_key.h>

#include "extview/dao_recordset.h"

#include <string>
#include <string_view>

namespace generalutilities {

namespace {

constexpr std::int64_t PercentOfThisPass = 60;

// Positions of the bound fields, the same in both recordsets.
enum Position { SourcePosition = 1, TargetPosition, DonePosition, IdPosition };

void BindFields(DaoRecordset& rows) {
    rows.BindField(SourcePosition, u"Source");
    rows.BindField(TargetPosition, u"Target");
    rows.BindField(DonePosition, u"Done");
    rows.BindField(IdPosition, u"ID");
}

std::u16string_view Text(DaoRecordset& rows, Position position) {
    return rows.GetString(position).value_or(std::u16string_view());
}

std::u16string SourceForm(DaoRecordset& rows, const DuplicateSearch& search) {
    return CompareForm(StripBraces(Text(rows, SourcePosition)), search.sourceLangId);
}

std::u16string TargetForm(DaoRecordset& rows, const DuplicateSearch& search) {
    return CompareForm(StripBraces(StripCodeMarkers(Text(rows, TargetPosition))),
                       search.targetLangId);
}

// Marks the rows that are equal to the current row of `outer`.
void MarkEqualRows(Database& database, const DuplicateSearch& search, DaoRecordset& outer) {
    const std::u16string key = MakeSourceKey(Text(outer, SourcePosition), search.sourceLangId);
    DaoRecordset inner;
    inner.Open(database,
               search.queries.duplicateQuery + QuoteSql(key) + search.queries.duplicateTail, true);
    if (inner.IsEmpty()) {
        return;
    }
    BindFields(inner);
    const std::u16string id(Text(outer, IdPosition));
    const std::u16string sourceForm = SourceForm(outer, search);
    const std::u16string targetForm = TargetForm(outer, search);
    bool first = true;
    do {
        if (Text(inner, IdPosition) == id) {
            first = false;
        } else if (SourceForm(inner, search) == sourceForm &&
                   TargetForm(inner, search) == targetForm) {
            if (first) {
                first = false;
            } else if (inner.Edit()) {
                inner.SetBool(DonePosition, true);
                inner.Update();
            }
        }
    } while (inner.MoveNext());
}

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
    DaoRecordset outer;
    if (!outer.Open(database, search.queries.mainQuery, true)) {
        return false;
    }
    if (outer.IsEmpty()) {
        return true;
    }
    const std::int64_t total = outer.Count();
    BindFields(outer);
    std::int64_t counter = 0;
    std::int64_t lastPercent = -1;
    do {
        if (!outer.GetBool(DonePosition)) {
            MarkEqualRows(database, search, outer);
        }
        counter += PercentOfThisPass;
        if (search.progress != nullptr && counter / total != lastPercent) {
            lastPercent = counter / total;
            search.progress->ReportProgress(static_cast<std::int32_t>(lastPercent),
                                            search.targetLangId);
        }
    } while (outer.MoveNext());
    return true;
}

}  // namespace generalutilities
