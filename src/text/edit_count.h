#pragma once

#include <cstddef>
#include <string_view>

namespace generalutilities {

/// The least number of units to insert, delete or replace that makes one string of the other: the
/// distance where every edit costs 1. 64 cells of the classic matrix are computed at a time, 256
/// with `vectors`, which needs HasAvx2(). Memory is in proportion to the lengths, and none is
/// allocated when one of the strings has no more than 128 units.
std::size_t EditCount(std::u16string_view one, std::u16string_view other, bool vectors);

}  // namespace generalutilities
