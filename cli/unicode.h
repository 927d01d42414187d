#pragma once

#include <generalutilities/utf8.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Between the UTF-8 of the terminal and the UTF-16 of the library.
namespace generalutilities::cli {

/// The offset of the first byte that starts no well-formed UTF-8 sequence (overlong forms,
/// surrogates and values above U+10FFFF are ill-formed too); nothing when there is none.
std::optional<std::size_t> FindInvalidUtf8(std::string_view text);

using generalutilities::ToUtf8;

/// Each ill-formed byte becomes U+FFFD.
inline std::u16string ToUtf16(std::string_view text) {
    return FromUtf8(text);
}

/// A command line argument as UTF-16. `name` is the argument as the user knows it; ill-formed UTF-8
/// is a `UsageError` that names the argument and the byte.
std::u16string ArgumentToUtf16(std::string_view name, std::string_view text);

/// A text for one line of a terminal: control characters become their visible pictures (U+2400 and
/// up), so that a text from a file can neither move the cursor nor break the line.
std::string ShowControls(std::string_view text);

}  // namespace generalutilities::cli
