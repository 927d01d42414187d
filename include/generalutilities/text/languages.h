#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace generalutilities {

/// The name of a language in that language, by its whole identifier (LANGID): a variant does not
/// fall back to its main language. Nothing, or an empty name, for an identifier without a name: the
/// latter where one of the 16 identifiers that share its upper bits has one. 100 gives the
/// library's own name.
std::optional<std::u16string_view> LanguageNativeName(std::int32_t langId) noexcept;

}  // namespace generalutilities
