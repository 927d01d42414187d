#include "language.h"

#include <generalutilities/project/language_tags.h>

#include "failure.h"
#include "unicode.h"

namespace generalutilities::cli {

std::int32_t ParseLanguage(const std::string& option, const std::string& language) {
    const auto langId = LangIdOfTag(ArgumentToUtf16(option, language));
    if (!langId) {
        throw UsageError(option + ": \"" + language +
                         "\" is no known language; give a tag such as fr-FR or a Windows language "
                         "identifier such as 1036");
    }
    return *langId;
}

std::string LanguageName(std::int32_t langId) {
    const std::string tag = ToUtf8(TagOfLangId(langId));
    const std::string number = std::to_string(langId);
    return tag == number ? number : tag + " (" + number + ")";
}

}  // namespace generalutilities::cli
