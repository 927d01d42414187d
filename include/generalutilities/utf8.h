#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Between UTF-8, which Linux programs speak, and the UTF-16 of the library. All of it is inline,
/// so that a client of the shared library alone has it too.
namespace generalutilities {

/// Reads the code point at `offset` and moves behind it; nothing, and no move, for a byte that
/// starts no well-formed sequence (overlong forms, surrogates and values above U+10FFFF are
/// ill-formed too). `offset` lies before the end.
inline std::optional<char32_t> DecodeUtf8(std::string_view text, std::size_t& offset) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(offset);
    if (lead < 0x80) {
        ++offset;
        return lead;
    }
    const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (length == 0 || lead > 0xF4 || text.size() - offset < length) {
        return std::nullopt;
    }
    char32_t point = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(offset + i) & 0xC0) != 0x80) {
            return std::nullopt;
        }
        point = point << 6 | (byte(offset + i) & 0x3F);
    }
    constexpr char32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (point < Smallest[length] || point > 0x10FFFF || (point >= 0xD800 && point < 0xE000)) {
        return std::nullopt;
    }
    offset += length;
    return point;
}

/// Appends a code point that is no surrogate.
inline void AppendUtf8(std::string& text, char32_t point) {
    const auto tail = [point](int shift) {
        return static_cast<char>(0x80 | (point >> shift & 0x3F));
    };
    if (point < 0x80) {
        text += static_cast<char>(point);
    } else if (point < 0x800) {
        text += static_cast<char>(0xC0 | point >> 6);
        text += tail(0);
    } else if (point < 0x10000) {
        text += static_cast<char>(0xE0 | point >> 12);
        text += tail(6);
        text += tail(0);
    } else {
        text += static_cast<char>(0xF0 | point >> 18);
        text += tail(12);
        text += tail(6);
        text += tail(0);
    }
}

/// Each byte that starts no well-formed sequence becomes U+FFFD.
inline std::u16string FromUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t offset = 0; offset < bytes.size();) {
        const auto decoded = DecodeUtf8(bytes, offset);
        offset += decoded ? 0 : 1;
        const char32_t point = decoded.value_or(0xFFFD);
        if (point < 0x10000) {
            text += static_cast<char16_t>(point);
        } else {
            text += static_cast<char16_t>(0xD7C0 + (point >> 10));
            text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        }
    }
    return text;
}

/// Appends `text` to `bytes`; false when there was an unpaired surrogate, which UTF-8 cannot
/// express and which is written as U+FFFD.
inline bool AppendUtf8(std::string& bytes, std::u16string_view text) {
    bool exact = true;
    bytes.reserve(bytes.size() + text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = text[i];
        if ((point & 0xF800) == 0xD800) {
            const bool paired =
                point < 0xDC00 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
            exact = exact && paired;
            point = paired ? 0x10000 + ((point & 0x3FF) << 10) + (text[++i] & 0x3FFU) : 0xFFFD;
        }
        AppendUtf8(bytes, point);
    }
    return exact;
}

/// An unpaired surrogate becomes U+FFFD.
inline std::string ToUtf8(std::u16string_view text) {
    std::string bytes;
    AppendUtf8(bytes, text);
    return bytes;
}

}  // namespace generalutilities
