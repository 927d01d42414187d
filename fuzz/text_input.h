// What the targets share: the check that ends a run, and texts from bytes.

#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// Each code unit from one to three bytes, as in UTF-8, unpaired surrogates included; a byte that
/// is part of no such sequence stands for itself. Any text can be told, and kept inputs can be
/// read.
inline std::u16string TextFrom(const std::uint8_t* data, std::size_t size) {
    std::u16string text;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t more = data[i] >> 5 == 6 ? 1 : data[i] >> 4 == 14 ? 2 : 0;
        std::uint32_t unit = data[i];
        if (more != 0 && size - i > more) {
            unit &= more == 1 ? 0x1F : 0xF;
            for (const std::size_t end = i + more; i < end;) {
                unit = unit << 6 | (data[++i] & 0x3F);
            }
        }
        text += static_cast<char16_t>(unit);
    }
    return text;
}
