#include "platform/files/utf8.h"

#include <cstddef>
#include <cstdint>

namespace generalutilities::files {

namespace {

constexpr char16_t Replacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}
bool IsLowSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

void AppendCodePoint(char32_t point, std::string& bytes) {
    const auto tail = [point](int shift) {
        return static_cast<char>(0x80 | ((point >> shift) & 0x3F));
    };
    if (point < 0x80) {
        bytes += static_cast<char>(point);
    } else if (point < 0x800) {
        bytes += static_cast<char>(0xC0 | (point >> 6));
        bytes += tail(0);
    } else if (point < 0x10000) {
        bytes += static_cast<char>(0xE0 | (point >> 12));
        bytes += tail(6);
        bytes += tail(0);
    } else {
        bytes += static_cast<char>(0xF0 | (point >> 18));
        bytes += tail(12);
        bytes += tail(6);
        bytes += tail(0);
    }
}

/// True when every surrogate was one of a pair; the others came out as U+FFFD.
bool Encode(std::u16string_view text, std::string& bytes) {
    bool paired = true;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = text[i];
        if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            point = 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00U);
        } else if (point >= 0xD800 && point < 0xE000) {
            point = Replacement;
            paired = false;
        }
        AppendCodePoint(point, bytes);
    }
    return paired;
}

/// The length of the well-formed sequence that starts at `position`, and its code point; 0 for
/// none.
std::size_t DecodeOne(std::string_view bytes, std::size_t position, char32_t& point) {
    const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(bytes[position + i]); };
    const std::uint8_t lead = at(0);
    if (lead < 0x80) {
        point = lead;
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() - position < length) {
        return 0;
    }
    point = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) {
            return 0;
        }
        point = (point << 6) | (at(i) & 0x3F);
    }
    const bool overlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
    const bool surrogate = point >= 0xD800 && point < 0xE000;
    return overlong || surrogate || point > 0x10FFFF ? 0 : length;
}

}  // namespace

std::optional<std::string> ToUtf8(std::u16string_view text) {
    std::string bytes;
    if (!Encode(text, bytes)) {
        return std::nullopt;
    }
    return bytes;
}

std::string ToUtf8Lossy(std::u16string_view text) {
    std::string bytes;
    Encode(text, bytes);
    return bytes;
}

std::u16string FromUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        char32_t point = Replacement;
        const std::size_t length = DecodeOne(bytes, i, point);
        if (length == 0) {
            text += Replacement;
            ++i;
            continue;
        }
        i += length;
        if (point >= 0x10000) {
            text += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        } else {
            text += static_cast<char16_t>(point);
        }
    }
    return text;
}

}  // namespace generalutilities::files
