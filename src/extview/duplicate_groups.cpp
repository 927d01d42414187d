#include "extview/duplicate_groups.h"

#include <generalutilities/extview/source_key.h>

#include "extview/transaction.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace generalutilities {

namespace {

constexpr std::uint32_t NotVisited = 0;
constexpr std::uint32_t NoneKept = UINT32_MAX;  // or 1 and the place of the member in its class

/// An order of identifiers in which numbers ascend, with or without leading zeros.
bool IsBefore(std::u16string_view left, std::u16string_view right) {
    return std::pair(left.size(), left) < std::pair(right.size(), right);
}

}  // namespace

DuplicateGroups::DuplicateGroups(Database& project, const DuplicateSearch& duplicateSearch)
    : database(project), search(duplicateSearch), rows(search.sourceLangId, search.targetLangId) {}

bool DuplicateGroups::Decide(DuplicateRows& outer, const std::function<void()>& countRow) {
    if (!rows.Open(database, search.queries.rowsQuery)) {
        return false;
    }
    Read(static_cast<std::size_t>(outer.Count()), countRow);
    if (!(keysBelong && idsAscend) && !ReadIds()) {
        return false;
    }
    std::sort(members.begin(), members.end(), [](const Member& left, const Member& right) {
        return std::tie(left.texts, left.row) < std::tie(right.texts, right.row);
    });
    if (!keysBelong) {
        FollowVisits(outer);
        return true;
    }
    for (std::size_t i = 1; i < members.size(); ++i) {
        if (members[i].texts == members[i - 1].texts) {
            MarkRow(members[i]);
        }
    }
    return true;
}

void DuplicateGroups::Read(std::size_t count, const std::function<void()>& countRow) {
    if (rows.IsEmpty()) {
        return;
    }
    members.reserve(count);
    std::u16string previousId;
    std::uint32_t row = 0;
    do {
        const std::u16string_view id = rows.Id();
        idsAscend = idsAscend && (row == 0 || IsBefore(previousId, id));
        previousId = id;
        const auto storedKey = rows.StoredKey();
        keysBelong = keysBelong && storedKey &&
                     *storedKey == MakeSourceKey(rows.Source(), search.sourceLangId);
        if (storedKey) {  // a row without a key is found by no search
            members.push_back({.texts = DigestOf(*storedKey, rows), .row = row});
        }
        ++row;
        countRow();
    } while (rows.MoveNext());
    marked.resize(row);
}

/// Reads the identifiers of all rows; false if two of them are equal.
bool DuplicateGroups::ReadIds() {
    ids.reserve(marked.size());
    if (rows.MoveFirst()) {
        do {
            ids.push_back(digest.Of({rows.Id()}).first);
        } while (rows.MoveNext());
    }
    std::vector<std::uint64_t> sorted = ids;
    std::sort(sorted.begin(), sorted.end());
    return std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
}

TextDigest::Value DuplicateGroups::DigestOf(std::u16string_view key, DuplicateRows& row) const {
    return digest.Of({key, row.SourceForm(), row.TargetForm()});
}

/// Goes through the rows in the order in which they look for rows that are equal to them.
void DuplicateGroups::FollowVisits(DuplicateRows& outer) {
    std::vector<std::uint32_t> byId(members.size());
    for (std::size_t i = 0; i < byId.size(); ++i) {
        byId[i] = static_cast<std::uint32_t>(i);
    }
    const auto idOf = [this](std::uint32_t member) { return ids[members[member].row]; };
    std::sort(byId.begin(), byId.end(),
              [&](std::uint32_t left, std::uint32_t right) { return idOf(left) < idOf(right); });
    do {
        const std::uint64_t id = digest.Of({outer.Id()}).first;
        const auto own = std::lower_bound(
            byId.begin(), byId.end(), id,
            [&](std::uint32_t member, std::uint64_t wanted) { return idOf(member) < wanted; });
        const Member* const visitor =
            own != byId.end() && idOf(*own) == id ? &members[*own] : nullptr;
        if (visitor != nullptr && marked[visitor->row]) {
            continue;
        }
        const TextDigest::Value texts =
            DigestOf(MakeSourceKey(outer.Source(), search.sourceLangId), outer);
        const auto first = std::lower_bound(
            members.begin(), members.end(), texts,
            [](const Member& member, const TextDigest::Value& v) { return member.texts < v; });
        if (first != members.end() && first->texts == texts) {
            Visit(first, visitor != nullptr && visitor->texts == texts ? visitor : nullptr);
        }
    } while (outer.MoveNext());
}

/// `first` begins the class; `visitor` is the visiting row if it belongs to the class. After the
/// first visit at most one more row than the class's first is without a mark, which is remembered.
void DuplicateGroups::Visit(Members::iterator first, const Member* visitor) {
    const auto placeOf = [&](const Member& member) {
        return static_cast<std::uint32_t>(&member - &*first);
    };
    const bool isOther = visitor != nullptr && placeOf(*visitor) > 0;
    if (first->kept == NotVisited) {
        for (auto member = first + 1; member != members.end() && member->texts == first->texts;
             ++member) {
            if (&*member != visitor) {
                MarkRow(*member);
            }
        }
    } else if (first->kept != NoneKept && !(isOther && placeOf(*visitor) + 1 == first->kept)) {
        MarkRow(*(first + (first->kept - 1)));
    }
    first->kept = isOther ? placeOf(*visitor) + 1 : NoneKept;
}

void DuplicateGroups::WriteMarks() {
    if (std::find(marked.begin(), marked.end(), true) == marked.end() || !rows.MoveFirst()) {
        return;
    }
    Transaction transaction(database);
    for (const bool isMarked : marked) {
        if (isMarked) {
            rows.MarkDone();
        }
        rows.MoveNext();
    }
    transaction.Commit();
}

}  // namespace generalutilities
