#include "text/detection/cost_table.h"

#include <algorithm>
#include <bit>

namespace generalutilities::detection {

namespace {

/// What it costs beside the shorter sequence's own cost to have to fall back to it.
constexpr Cost Surcharge = 12;

std::uint64_t KeyOf(char16_t before2, char16_t before1, char16_t unit) {
    return std::uint64_t{before2} << 32 | std::uint64_t{before1} << 16 | unit;
}

std::uint64_t KeyOf(std::u16string_view sequence) {
    std::uint64_t key = 0;
    for (const char16_t unit : sequence) {
        key = key << 16 | unit;
    }
    return key;
}

constexpr std::uint64_t WithoutFirst(std::uint64_t key) {
    return key > 0xFFFFFFFF ? key & 0xFFFFFFFF : key & 0xFFFF;
}

}  // namespace

CostTable::CostTable(std::size_t languages, Cost unknownCost, std::span<const Entry> entries)
    : languageCount(languages), unknown(unknownCost), slots(std::bit_ceil(entries.size() * 2 + 2)) {
    for (std::size_t length = 1; length <= LongestSequence; ++length) {
        for (const Entry& entry : entries) {
            if (entry.sequence.size() == length) {
                AddEntry(entry);
            }
        }
    }
}

std::size_t CostTable::SlotOf(std::uint64_t key) const {
    constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15;
    std::size_t at = (key * Spread >> 24) & (slots.size() - 1);
    while (slots[at].key != 0 && slots[at].key != key) {
        at = (at + 1) & (slots.size() - 1);
    }
    return at;
}

const std::uint8_t* CostTable::FindRow(std::uint64_t key) const {
    const Slot& slot = slots[SlotOf(key)];
    return slot.key == 0 ? nullptr : rows.data() + slot.row;
}

/// The shorter sequences of all languages are in the table when a longer one comes.
void CostTable::AddEntry(const Entry& entry) {
    const std::uint64_t key = KeyOf(entry.sequence);
    Slot& slot = slots[SlotOf(key)];
    if (slot.key == 0) {
        std::vector<Cost> costs(languageCount);
        if (entry.sequence.size() == 1) {
            std::fill(costs.begin(), costs.end(), unknown);
        } else {
            const std::u16string_view shorter = entry.sequence.substr(1);
            Add(0, shorter.size() == 2 ? shorter[0] : u'\0', shorter.back(), costs);
            for (Cost& cost : costs) {
                cost += Surcharge;
            }
        }
        slot = {key, static_cast<std::uint32_t>(rows.size())};
        for (const Cost cost : costs) {
            rows.push_back(static_cast<std::uint8_t>(cost));
        }
    }
    rows[slot.row + entry.language] = static_cast<std::uint8_t>(entry.cost);
}

void CostTable::Add(char16_t before2, char16_t before1, char16_t unit, std::span<Cost> sums) const {
    std::uint64_t key = KeyOf(before2, before1, unit);
    Cost surcharge = 0;
    const std::uint8_t* row = FindRow(key);
    while (row == nullptr && key > 0xFFFF) {
        key = WithoutFirst(key);
        surcharge += Surcharge;
        row = FindRow(key);
    }
    if (row == nullptr) {
        for (Cost& sum : sums) {
            sum += unknown;
        }
        return;
    }
    for (std::size_t i = 0; i < sums.size(); ++i) {
        sums[i] += row[i] + surcharge;
    }
}

}  // namespace generalutilities::detection
