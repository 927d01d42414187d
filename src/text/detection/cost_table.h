#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace generalutilities::detection {

/// Costs are tenths of a natural logarithm: with 10 more, a text is e times less likely.
using Cost = std::uint32_t;

/// What a character costs after the ones before it, for several languages at once.
///
/// A sequence of one to three characters has a row with the cost of its last character for each
/// language. Where a language does not list a sequence, the row holds what the shorter sequence
/// costs there and a surcharge, so that rating a character is finding one row.
class CostTable {
  public:
    static constexpr std::size_t LongestSequence = 3;

    struct Entry {
        std::u16string_view sequence;  ///< of 1 to `LongestSequence` units, none of them 0
        std::size_t language;
        Cost cost;  ///< at most 100
    };

    /// `unknownCost` is the cost of a character that no language lists.
    CostTable(std::size_t languages, Cost unknownCost, std::span<const Entry> entries);

    /// Adds to each language's sum what `unit` costs after `before2` and `before1`; 0 stands for
    /// nothing before.
    void Add(char16_t before2, char16_t before1, char16_t unit, std::span<Cost> sums) const;

  private:
    struct Slot {
        std::uint64_t key = 0;  ///< the units of the sequence; 0 is a free slot
        std::uint32_t row = 0;
    };

    std::size_t SlotOf(std::uint64_t key) const;
    const std::uint8_t* FindRow(std::uint64_t key) const;
    void AddEntry(const Entry& entry);

    std::size_t languageCount;
    Cost unknown;
    std::vector<Slot> slots;  ///< open addressing; the size is a power of two
    std::vector<std::uint8_t> rows;
};

}  // namespace generalutilities::detection
