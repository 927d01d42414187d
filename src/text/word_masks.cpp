#include "text/word_masks.h"

#include "platform/cpu.h"
#include "text/flat_tables.h"

namespace generalutilities {

WordMasks FindWordMasksPlainly(const char16_t* units) noexcept {
    WordMasks masks;
    for (std::size_t i = WordMasks::Units; i-- > 0;) {
        const unsigned unit = flat::Classes[units[i]];
        masks.letters = masks.letters << 1 | (unit & flat::KindLetter) / flat::KindLetter;
        masks.eastAsian = masks.eastAsian << 1 | (unit & flat::KindEastAsian) / flat::KindEastAsian;
        masks.special = masks.special << 1 | (unit & flat::KindSpecial) / flat::KindSpecial;
    }
    return masks;
}

WordMasks FindWordMasks(const char16_t* units) noexcept {
    return HasAvx2() ? FindWordMasksByBlocks(units) : FindWordMasksPlainly(units);
}

}  // namespace generalutilities
