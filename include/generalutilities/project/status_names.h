#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Status words of translations as people write them: "exact", "fuzzy+locked", "0x201", "513".
namespace generalutilities {

/// The names of the bits joined by "+", bits without a name as one number; "none" for 0.
std::u16string StatusText(std::int32_t status);

/// The opposite of `StatusText`. Names may be separated by "+", "," or "|" with spaces around; an
/// empty text is 0. Nothing for an unknown name or a number outside of 0 to 0x7FFFFFFF.
std::optional<std::int32_t> ParseStatus(std::u16string_view text);

/// The names that `ParseStatus` knows, for messages: "exact, fuzzy, ...".
std::u16string StatusNameList();

}  // namespace generalutilities
