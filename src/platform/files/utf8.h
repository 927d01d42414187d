#pragma once

#include <optional>
#include <string>
#include <string_view>

/// UTF-16 to UTF-8 and back, for the names and messages that cross into system and library calls.
/// Contents of texts never come this way: those stay exact UTF-16.
namespace generalutilities::files {

/// Nothing for a text with an unpaired surrogate, which UTF-8 cannot express.
std::optional<std::string> ToUtf8(std::u16string_view text);

/// As `ToUtf8`, with U+FFFD for each unpaired surrogate: for messages.
std::string ToUtf8Lossy(std::u16string_view text);

/// Each byte that is no part of a well-formed sequence becomes U+FFFD.
std::u16string FromUtf8(std::string_view bytes);

}  // namespace generalutilities::files
