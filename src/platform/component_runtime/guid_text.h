#pragma once

#include <generalutilities/automation/values.h>

#include <optional>
#include <string>
#include <string_view>

namespace generalutilities {

/// "{C53CF962-B65A-4511-862C-19ED5EF1804F}", in upper case.
inline std::string GuidText(const GUID& guid) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string text = "{";
    const auto put = [&](std::uint32_t value, int digits) {
        for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
            text.push_back(Digits[(value >> shift) & 0xF]);
        }
    };
    put(guid.Data1, 8);
    text.push_back('-');
    put(guid.Data2, 4);
    text.push_back('-');
    put(guid.Data3, 4);
    text.push_back('-');
    for (int i = 0; i < 8; ++i) {
        if (i == 2) {
            text.push_back('-');
        }
        put(guid.Data4[i], 2);
    }
    text.push_back('}');
    return text;
}

/// Reads the form that `GuidText` writes, in either case; nothing for any other text.
inline std::optional<GUID> ParseGuid(std::string_view text) {
    static constexpr std::string_view Form = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    if (text.size() != Form.size()) {
        return std::nullopt;
    }
    std::uint8_t nibbles[32]{};
    int count = 0;
    for (std::size_t i = 0; i < Form.size(); ++i) {
        const char c = text[i];
        if (Form[i] != 'x') {
            if (c != Form[i]) {
                return std::nullopt;
            }
            continue;
        }
        if (c >= '0' && c <= '9') {
            nibbles[count++] = static_cast<std::uint8_t>(c - '0');
        } else if ((c | 0x20) >= 'a' && (c | 0x20) <= 'f') {
            nibbles[count++] = static_cast<std::uint8_t>((c | 0x20) - 'a' + 10);
        } else {
            return std::nullopt;
        }
    }
    const auto number = [&](int first, int digits) {
        std::uint32_t value = 0;
        for (int i = first; i < first + digits; ++i) {
            value = value << 4 | nibbles[i];
        }
        return value;
    };
    GUID guid{number(0, 8),
              static_cast<std::uint16_t>(number(8, 4)),
              static_cast<std::uint16_t>(number(12, 4)),
              {}};
    for (int i = 0; i < 8; ++i) {
        guid.Data4[i] = static_cast<std::uint8_t>(number(16 + 2 * i, 2));
    }
    return guid;
}

}  // namespace generalutilities
