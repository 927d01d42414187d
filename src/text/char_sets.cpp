#include <generalutilities/code_pages.h>
#include <generalutilities/text/char_sets.h>

#include "text/char_set_rows.h"

#include <algorithm>

namespace generalutilities {

namespace {

/// Adds each unbroken run of characters that the page has.
void AddDrawn(CharSet& set, const CharSetRow& row, CodePageConverter& page) {
    std::int32_t first = row.first;
    for (std::int32_t unit = row.first; unit <= row.last + 1; ++unit) {
        const auto character = static_cast<char16_t>(unit);
        if (unit > row.last || page.FindForeignUnit({&character, 1}) == 0) {
            if (first < unit) {
                set.AddRange(first, unit);
            }
            first = unit + 1;
        }
    }
}

std::unique_ptr<CharSet> Build(std::int32_t key) {
    const auto rows = std::ranges::lower_bound(AllCharSetRows(), key, {}, &CharSetRows::key);
    if (rows == AllCharSetRows().end() || rows->key != key) {
        return nullptr;
    }
    auto set = std::make_unique<CharSet>();
    for (const CharSetRow& row : rows->fixed) {
        set->AddRange(row.first, row.last + 1);
    }
    if (const auto page = OpenCodePage(rows->codePage)) {
        for (const CharSetRow& row : rows->drawn) {
            AddDrawn(*set, row, *page);
        }
    }
    return set;
}

}  // namespace

void CharSet::AddRange(std::int32_t first, std::int32_t end) {
    const auto place = std::ranges::lower_bound(ranges, first, {}, &Range::first);
    if (place == ranges.end() || place->first != first) {
        ranges.insert(place, {first, end});
    }
}

std::uint32_t CharSet::Count() {
    if (cumulative.empty()) {
        std::uint32_t total = 0;
        cumulative.reserve(ranges.size());
        for (const Range& range : ranges) {
            total += static_cast<std::uint32_t>(range.end - range.first);
            cumulative.push_back(total);
        }
    }
    return cumulative.empty() ? 0 : cumulative.back();
}

std::int32_t CharSet::At(std::uint32_t number) {
    if (number >= Count()) {
        return End;
    }
    const auto end = std::ranges::upper_bound(cumulative, number);
    const Range& range = ranges[static_cast<std::size_t>(end - cumulative.begin())];
    return range.end - static_cast<std::int32_t>(*end - number);
}

CharSet* CharSets::Get(std::int32_t key) {
    auto known = sets.find(key);
    if (known == sets.end()) {
        known = sets.emplace(key, Build(key)).first;
    }
    return known->second.get();
}

}  // namespace generalutilities
