#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <bit>
#include <emmintrin.h>
#endif

/// The two loops over bytes that reading RTF spends its time in, 16 bytes at a step where the
/// processor has SSE2 and byte by byte elsewhere and at the end of a stretch.
namespace generalutilities::rtf {

/// The five bytes that are not plain text: they open or close a group, begin an escape or a control
/// word, or are line ends of the file.
constexpr bool IsStructure(char byte) {
    return byte == '{' || byte == '}' || byte == '\\' || byte == '\r' || byte == '\n';
}

/// How many bytes stand before the first one of `IsStructure`.
inline std::size_t PlainLength(std::string_view bytes) {
    std::size_t i = 0;
#if defined(__SSE2__)
    for (; i + 16 <= bytes.size(); i += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + i));
        const __m128i braces = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('{')),
                                            _mm_cmpeq_epi8(block, _mm_set1_epi8('}')));
        const __m128i ends = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('\r')),
                                          _mm_cmpeq_epi8(block, _mm_set1_epi8('\n')));
        const __m128i found =
            _mm_or_si128(_mm_or_si128(braces, ends), _mm_cmpeq_epi8(block, _mm_set1_epi8('\\')));
        if (const int mask = _mm_movemask_epi8(found); mask != 0) {
            return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(mask)));
        }
    }
#endif
    while (i < bytes.size() && !IsStructure(bytes[i])) {
        ++i;
    }
    return i;
}

/// How many of the first bytes are letters from "a" to "z".
inline std::size_t LowerCaseLength(std::string_view bytes) {
    std::size_t i = 0;
#if defined(__SSE2__)
    for (; i + 16 <= bytes.size(); i += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + i));
        const __m128i letters = _mm_and_si128(_mm_cmpgt_epi8(block, _mm_set1_epi8('a' - 1)),
                                              _mm_cmplt_epi8(block, _mm_set1_epi8('z' + 1)));
        if (const int mask = _mm_movemask_epi8(letters); mask != 0xFFFF) {
            return i + static_cast<std::size_t>(std::countr_one(static_cast<unsigned>(mask)));
        }
    }
#endif
    while (i < bytes.size() && bytes[i] >= 'a' && bytes[i] <= 'z') {
        ++i;
    }
    return i;
}

/// Appends each byte as one character, with its sign extended: 0xE9 becomes U+FFE9.
inline void AppendSignExtended(std::string_view bytes, std::u16string& text) {
    constexpr std::size_t BlockSize = 128;
    char16_t block[BlockSize];
    while (!bytes.empty()) {
        const std::size_t length = bytes.size() < BlockSize ? bytes.size() : BlockSize;
        std::size_t i = 0;
#if defined(__SSE2__)
        for (; i + 16 <= length; i += 16) {
            const __m128i in = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + i));
            const __m128i low = _mm_srai_epi16(_mm_unpacklo_epi8(in, in), 8);
            const __m128i high = _mm_srai_epi16(_mm_unpackhi_epi8(in, in), 8);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(block + i), low);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(block + i + 8), high);
        }
#endif
        for (; i < length; ++i) {
            block[i] = static_cast<char16_t>(static_cast<signed char>(bytes[i]));
        }
        text.append(block, length);
        bytes.remove_prefix(length);
    }
}

}  // namespace generalutilities::rtf
