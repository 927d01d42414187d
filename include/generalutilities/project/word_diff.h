#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// What changed between two versions of a text, word by word.
namespace generalutilities {

/// A stretch that both texts have, or one in which they differ. Offsets are in code units.
struct DiffStretch {
    bool same = true;
    std::size_t oldFirst = 0;
    std::size_t oldLength = 0;  ///< 0 for a stretch that was added
    std::size_t newFirst = 0;
    std::size_t newLength = 0;  ///< 0 for a stretch that was removed

    friend bool operator==(const DiffStretch&, const DiffStretch&) = default;
};

/// The stretches of two texts in order: same and differing ones by turns, none of them empty on
/// both sides; together they cover both texts. Words are those of the language. The time grows with
/// the length times the number of differing words, and that number is bounded: texts that differ
/// more give one long differing stretch where a finer answer would cost more than it tells.
std::vector<DiffStretch> CompareWords(std::u16string_view oldText, std::u16string_view newText,
                                      std::int32_t langId);

}  // namespace generalutilities
