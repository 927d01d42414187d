#pragma once

#include <cstdint>
#include <string>

namespace generalutilities::cli {

/// A language as the user gives it, a tag such as "fr-FR" or a Windows language identifier such as
/// "1036", as an identifier. `option` is named in the `UsageError` for a language that is unknown.
std::int32_t ParseLanguage(const std::string& option, const std::string& language);

/// For messages: the tag with the identifier, such as "fr-FR (1036)"; the identifier alone where it
/// has no tag.
std::string LanguageName(std::int32_t langId);

}  // namespace generalutilities::cli
