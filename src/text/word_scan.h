#pragma once

#include <generalutilities/text/words.h>

#include "text/char_tables.h"

#include <limits>
#include <stdexcept>

/// What the two scanners of words share: placeholders, numbers, and the making of tokens.
namespace generalutilities {

/// The length of the placeholder that starts at `position` ("{", ASCII digits, "}"), or 0.
///
/// Every digit that a failed look-ahead passes is passed once more by the token that holds it, and
/// a "{" further on needs a look-ahead of its own only behind those digits: scanning stays linear.
constexpr std::size_t PlaceholderLength(std::u16string_view text, std::size_t position) {
    if (position >= text.size() || text[position] != u'{') {
        return 0;
    }
    std::size_t end = position + 1;
    while (end < text.size() && text[end] >= u'0' && text[end] <= u'9') {
        ++end;
    }
    const bool closed = end > position + 1 && end < text.size() && text[end] == u'}';
    return closed ? end + 1 - position : 0;
}

/// Whether `unit` is one of the decimal separators; a separator 0 is none.
constexpr bool IsDecimal(const NumberSeparators& separators, char16_t unit) {
    return unit != 0 && (unit == separators.decimal || unit == separators.altDecimal);
}

/// Whether `unit` may stand between two digits of a number.
constexpr bool JoinsDigits(const NumberSeparators& separators, char16_t unit) {
    return IsDecimal(separators, unit) ||
           (unit != 0 && (unit == separators.thousands || unit == separators.altThousands));
}

/// The end of the number that has a digit at `position`: behind its last digit. One separator may
/// stand directly behind a digit; it belongs to the number only if a digit follows.
constexpr std::size_t NumberEnd(const NumberSeparators& separators, std::u16string_view text,
                                std::size_t position) {
    std::size_t end = position;
    for (std::size_t i = position; i < text.size(); ++i) {
        if (IsNumber(text[i])) {
            end = i + 1;
        } else if (i != end || !JoinsDigits(separators, text[i])) {
            break;
        }
    }
    return end;
}

/// Tokens have 32-bit indexes, so longer texts are refused.
inline void CheckTextLength(std::u16string_view text) {
    if (text.size() > std::size_t{std::numeric_limits<std::int32_t>::max()}) {
        throw std::length_error("a text of more than 2^31 - 1 code units cannot be parsed");
    }
}

constexpr TextToken MakeToken(std::size_t first, std::size_t end, WordTypeEnum type) {
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end), type};
}

}  // namespace generalutilities
