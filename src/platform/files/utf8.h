#pragma once

#include <generalutilities/utf8.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// UTF-16 to UTF-8 and back, for the names and messages that cross into system and library calls.
/// Contents of texts never come this way: those stay exact UTF-16.
namespace generalutilities::files {

using generalutilities::FromUtf8;

/// Nothing for a text with an unpaired surrogate, which UTF-8 cannot express.
inline std::optional<std::string> ToUtf8(std::u16string_view text) {
    std::string bytes;
    return AppendUtf8(bytes, text) ? std::optional(std::move(bytes)) : std::nullopt;
}

/// As `ToUtf8`, with U+FFFD for each unpaired surrogate: for messages.
inline std::string ToUtf8Lossy(std::u16string_view text) {
    return generalutilities::ToUtf8(text);
}

}  // namespace generalutilities::files
