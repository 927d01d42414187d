#include "unicode.h"

#include "failure.h"

namespace generalutilities::cli {
namespace {

constexpr char32_t Replacement = 0xFFFD;

/// Reads one code point at `offset` and moves behind it; nothing, and no move, for a byte that
/// starts no well-formed sequence.
std::optional<char32_t> Decode(std::string_view text, std::size_t& offset) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(offset);
    if (lead < 0x80) {
        ++offset;
        return lead;
    }
    const int length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || text.size() - offset < static_cast<std::size_t>(length)) {
        return std::nullopt;
    }
    char32_t value = lead & (0xFF >> (length + 1));
    for (int i = 1; i < length; ++i) {
        const unsigned char next = byte(offset + static_cast<std::size_t>(i));
        if ((next & 0xC0) != 0x80) {
            return std::nullopt;
        }
        value = value << 6 | (next & 0x3F);
    }
    constexpr char32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (value < Smallest[length] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        return std::nullopt;
    }
    offset += static_cast<std::size_t>(length);
    return value;
}

void AppendUtf8(std::string& text, char32_t value) {
    if (value < 0x80) {
        text += static_cast<char>(value);
    } else if (value < 0x800) {
        text += static_cast<char>(0xC0 | value >> 6);
        text += static_cast<char>(0x80 | (value & 0x3F));
    } else if (value < 0x10000) {
        text += static_cast<char>(0xE0 | value >> 12);
        text += static_cast<char>(0x80 | (value >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (value & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | value >> 18);
        text += static_cast<char>(0x80 | (value >> 12 & 0x3F));
        text += static_cast<char>(0x80 | (value >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (value & 0x3F));
    }
}

}  // namespace

std::optional<std::size_t> FindInvalidUtf8(std::string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        if (!Decode(text, offset)) {
            return offset;
        }
    }
    return std::nullopt;
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        char32_t value = Replacement;
        if (const auto decoded = Decode(text, offset)) {
            value = *decoded;
        } else {
            ++offset;
        }
        if (value < 0x10000) {
            result += static_cast<char16_t>(value);
        } else {
            result += static_cast<char16_t>(0xD7C0 + (value >> 10));
            result += static_cast<char16_t>(0xDC00 + (value & 0x3FF));
        }
    }
    return result;
}

std::string ToUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t value = text[i];
        if ((value & 0xF800) == 0xD800) {
            const bool paired =
                value < 0xDC00 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
            value = paired ? 0x10000 + ((value & 0x3FF) << 10) + (text[++i] & 0x3FFU) : Replacement;
        }
        AppendUtf8(result, value);
    }
    return result;
}

std::u16string ArgumentToUtf16(std::string_view name, std::string_view text) {
    if (const auto offset = FindInvalidUtf8(text)) {
        throw UsageError(std::string(name) + ": byte " + std::to_string(*offset) +
                         " is not valid UTF-8; give the text in UTF-8");
    }
    return ToUtf16(text);
}

std::string ShowControls(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        char32_t value = Replacement;
        if (const auto decoded = Decode(text, offset)) {
            value = *decoded;
        } else {
            ++offset;
        }
        if (value < 0x20) {
            value += 0x2400;
        } else if (value == 0x7F) {
            value = 0x2421;
        } else if (value >= 0x80 && value < 0xA0) {
            value = Replacement;
        }
        AppendUtf8(result, value);
    }
    return result;
}

}  // namespace generalutilities::cli
