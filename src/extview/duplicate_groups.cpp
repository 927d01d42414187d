#include "extview/duplicate_groups.h"

#include <generalutilities/extview/source_key.h>

#include "extview/dao_recordset.h"
#include "extview/transaction.h"

#include <algorithm>
#include <functional>

namespace generalutilities {

namespace {

using Hash = std::hash<std::u16string_view>;

// Sorts the hashes and gives those that stand there twice or more. Two texts with one hash cost a
// needless look at a group or the slower way, never a wrong mark.
std::unordered_set<std::size_t> Repeated(std::vector<std::size_t>& hashes) {
    std::unordered_set<std::size_t> repeated;
    std::sort(hashes.begin(), hashes.end());
    for (std::size_t i = 1; i < hashes.size(); ++i) {
        if (hashes[i] == hashes[i - 1]) {
            repeated.insert(hashes[i]);
        }
    }
    return repeated;
}

// Both forms of a row as one text, the same for equal pairs alone: the length of the first says
// where it ends.
std::u16string PairForm(DuplicateRows& rows) {
    std::u16string form = rows.SourceForm();
    const std::size_t length = form.size();
    form += rows.TargetForm();
    form.push_back(static_cast<char16_t>(length & 0xFFFF));
    form.push_back(static_cast<char16_t>(length >> 16));
    return form;
}

}  // namespace

bool DuplicateGroups::Prepare() {
    DaoRecordset rows;
    if (!rows.Open(database, search.queries.keyQuery, true)) {
        return false;
    }
    if (rows.IsEmpty()) {
        return true;
    }
    constexpr int Id = 1;
    constexpr int Key = 2;
    rows.BindField(Id, u"ID");
    rows.BindField(Key, u"Source2Index");
    std::vector<std::size_t> ids;
    std::vector<std::size_t> keys;
    do {
        ids.push_back(Hash()(rows.GetString(Id).value_or(std::u16string_view())));
        if (const auto key = rows.GetString(Key)) {
            keys.push_back(Hash()(*key));
        }
    } while (rows.MoveNext());
    sharedKeys = Repeated(keys);
    return Repeated(ids).empty();
}

void DuplicateGroups::MarkEqualRows(DuplicateRows& outer) {
    const std::u16string id(outer.Id());
    if (marked.contains(id)) {
        return;
    }
    const std::u16string key = MakeSourceKey(outer.Source(), search.sourceLangId);
    if (!sharedKeys.contains(Hash()(key))) {
        return;
    }
    Group& group = GroupOf(key);
    const auto found = group.unmarked.find(PairForm(outer));
    if (found == group.unmarked.end()) {
        return;
    }
    // The first of the equal rows stays, and the current row does.
    std::vector<std::u16string>& equal = found->second;
    std::vector<std::u16string> kept;
    for (std::u16string& candidate : equal) {
        if (kept.empty() || candidate == id) {
            kept.push_back(std::move(candidate));
        } else {
            marked.insert(std::move(candidate));
            group.hasMarks = true;
        }
    }
    equal = std::move(kept);
}

DuplicateGroups::Group& DuplicateGroups::GroupOf(const std::u16string& key) {
    const auto [entry, isNew] = groups.try_emplace(key);
    Group& group = entry->second;
    if (isNew) {
        group.query = search.queries.duplicateQuery + QuoteSql(key) + search.queries.duplicateTail;
        DuplicateRows rows(search.sourceLangId, search.targetLangId);
        if (rows.Open(database, group.query) && !rows.IsEmpty()) {
            do {
                group.unmarked[PairForm(rows)].emplace_back(rows.Id());
            } while (rows.MoveNext());
        }
    }
    return group;
}

void DuplicateGroups::WriteMarks() {
    if (marked.empty()) {
        return;
    }
    Transaction transaction(database);
    for (const auto& [key, group] : groups) {
        DuplicateRows rows(search.sourceLangId, search.targetLangId);
        if (group.hasMarks && rows.Open(database, group.query) && !rows.IsEmpty()) {
            do {
                if (marked.contains(std::u16string(rows.Id()))) {
                    rows.MarkDone();
                }
            } while (rows.MoveNext());
        }
    }
    transaction.Commit();
}

}  // namespace generalutilities
