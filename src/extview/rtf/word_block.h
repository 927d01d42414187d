#pragma once

#include "extview/rtf/control_word.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Stepping over control words that mean nothing, 64 bytes at a time.
///
/// A table consists mostly of such words, one directly behind the other. Measuring each one to find
/// the next makes every word wait for the one before. Here the backslashes of a whole block are
/// found first, as bits of one number, and the words between them are then looked at independently.
namespace generalutilities::rtf {

inline constexpr std::size_t WordBlockSize = 64;

/// One bit per byte of a block.
struct WordBlock {
    std::uint64_t backslashes = 0;
    std::uint64_t letters = 0;  ///< "a" to "z"
    std::uint64_t digits = 0;
    std::uint64_t spaces = 0;

    explicit WordBlock(const char* bytes);

    /// The bytes that do not fit a succession of words, each a backslash, letters, digits and a
    /// space.
    std::uint64_t Unfit() const {
        const std::uint64_t known = backslashes | letters | digits | spaces;
        return ~known | (backslashes << 1 & ~letters) | (letters & digits << 1) |
               (spaces << 1 & ~backslashes);
    }
};

#if defined(__SSE2__)
inline WordBlock::WordBlock(const char* bytes) {
    for (unsigned part = 0; part < 4; ++part) {
        const __m128i block =
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + std::size_t{16} * part));
        const auto bits = [part](__m128i found) {
            return static_cast<std::uint64_t>(_mm_movemask_epi8(found)) << (part * 16);
        };
        const auto inRange = [block](char low, char high) {
            return _mm_and_si128(_mm_cmpgt_epi8(block, _mm_set1_epi8(static_cast<char>(low - 1))),
                                 _mm_cmplt_epi8(block, _mm_set1_epi8(static_cast<char>(high + 1))));
        };
        backslashes |= bits(_mm_cmpeq_epi8(block, _mm_set1_epi8('\\')));
        letters |= bits(inRange('a', 'z'));
        digits |= bits(inRange('0', '9'));
        spaces |= bits(_mm_cmpeq_epi8(block, _mm_set1_epi8(' ')));
    }
}
#else
inline WordBlock::WordBlock(const char* bytes) {
    for (std::size_t i = 0; i < WordBlockSize; ++i) {
        backslashes |= static_cast<std::uint64_t>(bytes[i] == '\\') << i;
        letters |= static_cast<std::uint64_t>(bytes[i] >= 'a' && bytes[i] <= 'z') << i;
        digits |= static_cast<std::uint64_t>(bytes[i] >= '0' && bytes[i] <= '9') << i;
        spaces |= static_cast<std::uint64_t>(bytes[i] == ' ') << i;
    }
}
#endif

/// The length of the words at the start of the bytes that do not matter to `words`, as far as whole
/// blocks of words tell. The last word of a succession, which something else follows, never counts.
inline std::size_t MeaninglessLength(std::string_view bytes, const ControlWordSet& words) {
    std::size_t length = 0;
    while (bytes.size() - length >= WordBlockSize) {
        const char* const block = bytes.data() + length;
        const WordBlock classes(block);
        const std::uint64_t unfit = classes.Unfit();
        const auto fitEnd = static_cast<std::size_t>(std::countr_zero(unfit));  // 64 if all fit
        std::uint64_t starts = classes.backslashes;
        if ((starts & 1) == 0) {
            break;
        }
        std::size_t start = 0;
        bool matters = false;
        while ((starts &= starts - 1) != 0) {
            const auto next = static_cast<std::size_t>(std::countr_zero(starts));
            if (next > fitEnd) {
                break;
            }
            const std::uint64_t behindName = ~classes.letters >> (start + 1);
            const auto nameLength = static_cast<std::size_t>(std::countr_zero(behindName));
            if (words.MayMatter({block + start + 1, nameLength})) {
                matters = true;
                break;
            }
            start = next;
        }
        length += start;
        if (matters || start == 0 || fitEnd < WordBlockSize) {
            break;
        }
    }
    return length;
}

}  // namespace generalutilities::rtf
