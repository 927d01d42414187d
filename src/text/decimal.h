#pragma once

#include <charconv>
#include <cstdint>
#include <string>

namespace generalutilities {

/// Appends a number in decimal, without grouping.
inline void AppendDecimal(std::u16string& text, std::int64_t number) {
    char digits[20];
    char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    text.append(digits, end);
}

inline std::u16string Decimal(std::int64_t number) {
    std::u16string text;
    AppendDecimal(text, number);
    return text;
}

}  // namespace generalutilities
