#include "unicode.h"

#include "failure.h"

namespace generalutilities::cli {

std::optional<std::size_t> FindInvalidUtf8(std::string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        if (!DecodeUtf8(text, offset)) {
            return offset;
        }
    }
    return std::nullopt;
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
        char32_t value = 0xFFFD;
        if (const auto decoded = DecodeUtf8(text, offset)) {
            value = *decoded;
        } else {
            ++offset;
        }
        if (value < 0x20) {
            value += 0x2400;
        } else if (value == 0x7F) {
            value = 0x2421;
        } else if (value >= 0x80 && value < 0xA0) {
            value = 0xFFFD;
        }
        AppendUtf8(result, value);
    }
    return result;
}

}  // namespace generalutilities::cli
