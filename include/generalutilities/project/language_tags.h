#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Language tags ("fr-FR") and Windows language identifiers (1036), in both directions.
namespace generalutilities {

/// The identifier of a language given as a tag, or as an identifier in decimal or with "0x".
/// Tags are read without regard to case, "_" counts as "-", and what follows a "." or "@" is left
/// out but for the scripts of locale names ("sr@latin"). A tag without a region gives the
/// language's usual one: "fr" is 1036, "ar" 1025. A script may be given or left out: "zh-Hant" and
/// "zh-TW" are 1028. Nothing for a tag that has no identifier, and for a number outside of 1 to
/// 65535.
std::optional<std::int32_t> LangIdOfTag(std::u16string_view tag);

/// The tag of an identifier; the identifier in decimal where it has no tag. `LangIdOfTag` of the
/// result gives the identifier again.
std::u16string TagOfLangId(std::int32_t langId);

}  // namespace generalutilities
