#pragma once

#include <bit>
#include <cstddef>
#include <string_view>

#if defined(__SSE2__)
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

/// A control word of the usual form, measured from the first byte of its name: letters from "a" to
/// "z", digits, and a space, each of which may be missing.
struct WordShape {
    std::size_t nameLength = 0;
    std::size_t argumentEnd = 0;
    std::size_t end = 0;  ///< behind the space
};

/// Measures the control word that begins with the first byte. False if its form is another one, or
/// if it is not seen to end within the bytes, or within 15 of them.
inline bool MeasureWord(std::string_view bytes, WordShape& shape) {
    constexpr std::size_t Window = 16;
    if (bytes.size() < Window) {
        return false;
    }
    unsigned letters = 0;
    unsigned digits = 0;
    unsigned spaces = 0;
#if defined(__SSE2__)
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data()));
    const auto inRange = [block](char low, char high) {
        const __m128i above = _mm_cmpgt_epi8(block, _mm_set1_epi8(static_cast<char>(low - 1)));
        const __m128i below = _mm_cmplt_epi8(block, _mm_set1_epi8(static_cast<char>(high + 1)));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(above, below)));
    };
    letters = inRange('a', 'z');
    digits = inRange('0', '9');
    spaces = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, _mm_set1_epi8(' '))));
#else
    for (std::size_t i = 0; i < Window; ++i) {
        letters |= static_cast<unsigned>(bytes[i] >= 'a' && bytes[i] <= 'z') << i;
        digits |= static_cast<unsigned>(bytes[i] >= '0' && bytes[i] <= '9') << i;
        spaces |= static_cast<unsigned>(bytes[i] == ' ') << i;
    }
#endif
    // Where the word ends decides where the next one is looked for, so it is found first, and by
    // the shortest way: the first byte that is neither letter nor digit.
    shape.argumentEnd = static_cast<std::size_t>(std::countr_one(letters | digits));
    if (shape.argumentEnd == Window) {
        return false;
    }
    shape.end = shape.argumentEnd + ((spaces >> shape.argumentEnd) & 1);
    shape.nameLength = static_cast<std::size_t>(std::countr_one(letters));
    const unsigned inWord = (1U << shape.argumentEnd) - 1;
    const unsigned inName = (1U << shape.nameLength) - 1;
    const char next = bytes[shape.argumentEnd];
    const bool isUsual = (letters & inWord) == inName &&
                         (IsStructure(next) || next == ' ' || shape.argumentEnd > shape.nameLength);
    return isUsual;
}

/// The value of a hexadecimal digit; anything else counts as 0.
inline int HexValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return 0;
}

/// The byte of an escape by its two digits.
inline int HexByte(char first, char second) {
    return HexValue(first) * 16 + HexValue(second);
}

}  // namespace generalutilities::rtf
