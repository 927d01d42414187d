#pragma once

#include <string>
#include <string_view>

/// Case mapping and accent removal over constant tables of our own: the result depends on the
/// string alone and is the same on every machine. No input is refused; an unpaired surrogate and
/// U+0000 pass through like any other code unit without a table row.
namespace generalutilities {

/// Each code unit in upper case; U+00DF becomes "SS".
std::u16string ToUpper(std::u16string_view text);

/// Each code unit in lower case. The length stays.
std::u16string ToLower(std::u16string_view text);

/// Each code unit replaced by what its accents and compatibility forms fold to (1 to 18 units).
std::u16string DeAccentString(std::u16string_view text);

/// The same as `ToUpper(DeAccentString(text))`, in one pass.
std::u16string DeAccentUpperCaseString(std::u16string_view text);

}  // namespace generalutilities
