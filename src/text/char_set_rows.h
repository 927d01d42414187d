#pragma once

#include <cstdint>
#include <span>

/// What the sets of characters consist of, as data.
namespace generalutilities {

/// Code points from the first to the last, both included.
struct CharSetRow {
    std::uint16_t first;
    std::uint16_t last;
};

struct CharSetRows {
    std::int32_t key;
    std::span<const CharSetRow> fixed;
    std::span<const CharSetRow> drawn = {};  ///< of these, the characters that `codePage` has
    std::uint32_t codePage = 0;              ///< 0 where nothing is drawn from one
};

/// In ascending order of the keys.
std::span<const CharSetRows> AllCharSetRows();

}  // namespace generalutilities
