#include "platform/code_pages/ascii_blocks.h"

#include "platform/cpu.h"

#include <cstdint>
#include <cstring>

#ifdef GENERALUTILITIES_AVX2
#include <immintrin.h>
#endif

namespace generalutilities::code_pages {

namespace {

bool IsAsciiBlock(const char* bytes) {
    std::uint64_t words[2];
    std::memcpy(words, bytes, sizeof words);
    return ((words[0] | words[1]) & 0x8080808080808080) == 0;
}

bool IsAsciiBlock(const char16_t* units) {
    std::uint64_t words[4];
    std::memcpy(words, units, sizeof words);
    return ((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80) == 0;
}

template <class Unit>
std::size_t Skip(const Unit* units, std::size_t length) {
    std::size_t i = 0;
    while (i + AsciiBlock <= length && IsAsciiBlock(units + i)) {
        i += AsciiBlock;
    }
    return i;
}

template <class From, class To>
std::size_t CopyPlain(const From* from, std::size_t length, To* to) {
    std::size_t i = 0;
    for (; i + AsciiBlock <= length && IsAsciiBlock(from + i); i += AsciiBlock) {
        for (std::size_t k = i; k < i + AsciiBlock; ++k) {
            to[k] = static_cast<To>(from[k]);
        }
    }
    return i;
}

#ifdef GENERALUTILITIES_AVX2
// Four blocks at a step while they last, then one by one. Of a long text the first block is written
// and then once more from where the result is aligned, so that no later store crosses a cache line.

constexpr std::size_t LongText = 256;

/// How many elements of a result to pass over until the next boundary of 32 bytes.
template <class Unit>
std::size_t ToAlignment(const Unit* to) {
    return (-reinterpret_cast<std::uintptr_t>(to) & 31) / sizeof(Unit);
}

GENERALUTILITIES_AVX2 std::size_t WidenAvx2(const char* bytes, std::size_t length,
                                            char16_t* units) {
    std::size_t i = 0;
    if (length >= LongText) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
        if (_mm_movemask_epi8(block) != 0) {
            return 0;
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(units), _mm256_cvtepu8_epi16(block));
        i = ToAlignment(units);
    }
    for (; i + 64 <= length; i += 64) {
        const auto* from = reinterpret_cast<const __m256i*>(bytes + i);
        const __m256i first = _mm256_loadu_si256(from);
        const __m256i second = _mm256_loadu_si256(from + 1);
        if (_mm256_movemask_epi8(_mm256_or_si256(first, second)) != 0) {
            break;
        }
        auto* to = reinterpret_cast<__m256i*>(units + i);
        _mm256_storeu_si256(to, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(first)));
        _mm256_storeu_si256(to + 1, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(first, 1)));
        _mm256_storeu_si256(to + 2, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(second)));
        _mm256_storeu_si256(to + 3, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(second, 1)));
    }
    for (; i + AsciiBlock <= length; i += AsciiBlock) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
        if (_mm_movemask_epi8(block) != 0) {
            break;
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(units + i), _mm256_cvtepu8_epi16(block));
    }
    return i;
}

GENERALUTILITIES_AVX2 std::size_t NarrowAvx2(const char16_t* units, std::size_t length,
                                             char* bytes) {
    const __m256i notAscii = _mm256_set1_epi16(static_cast<short>(0xFF80));
    std::size_t i = 0;
    if (length >= LongText) {
        const auto* from = reinterpret_cast<const __m256i*>(units);
        const __m256i a = _mm256_loadu_si256(from);
        const __m256i b = _mm256_loadu_si256(from + 1);
        if (_mm256_testz_si256(_mm256_or_si256(a, b), notAscii) == 0) {
            return 0;
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes),
                            _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8));
        i = ToAlignment(bytes);
    }
    for (; i + 64 <= length; i += 64) {
        const auto* from = reinterpret_cast<const __m256i*>(units + i);
        const __m256i a = _mm256_loadu_si256(from);
        const __m256i b = _mm256_loadu_si256(from + 1);
        const __m256i c = _mm256_loadu_si256(from + 2);
        const __m256i d = _mm256_loadu_si256(from + 3);
        const __m256i all = _mm256_or_si256(_mm256_or_si256(a, b), _mm256_or_si256(c, d));
        if (_mm256_testz_si256(all, notAscii) == 0) {
            break;
        }
        auto* to = reinterpret_cast<__m256i*>(bytes + i);
        _mm256_storeu_si256(to, _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8));
        _mm256_storeu_si256(to + 1, _mm256_permute4x64_epi64(_mm256_packus_epi16(c, d), 0xD8));
    }
    for (; i + AsciiBlock <= length; i += AsciiBlock) {
        const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units + i));
        if (_mm256_testz_si256(block, notAscii) == 0) {
            break;
        }
        _mm_storeu_si128(
            reinterpret_cast<__m128i*>(bytes + i),
            _mm_packus_epi16(_mm256_castsi256_si128(block), _mm256_extracti128_si256(block, 1)));
    }
    return i;
}
#endif

}  // namespace

std::size_t WidenAscii(const char* bytes, std::size_t length, char16_t* units) {
#ifdef GENERALUTILITIES_AVX2
    if (HasAvx2()) {
        return WidenAvx2(bytes, length, units);
    }
#endif
    return CopyPlain(bytes, length, units);
}

std::size_t NarrowAscii(const char16_t* units, std::size_t length, char* bytes) {
#ifdef GENERALUTILITIES_AVX2
    if (HasAvx2()) {
        return NarrowAvx2(units, length, bytes);
    }
#endif
    return CopyPlain(units, length, bytes);
}

std::size_t SkipAscii(const char* bytes, std::size_t length) {
    return Skip(bytes, length);
}

std::size_t SkipAscii(const char16_t* units, std::size_t length) {
    return Skip(units, length);
}

}  // namespace generalutilities::code_pages
