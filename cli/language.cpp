#include "language.h"

#include "failure.h"

#include <charconv>

namespace generalutilities::cli {

std::int32_t ParseLanguage(const std::string& option, const std::string& language) {
    std::int32_t langId = 0;
    const char* end = language.data() + language.size();
    const auto [stop, error] = std::from_chars(language.data(), end, langId);
    if (error != std::errc() || stop != end || langId <= 0 || langId > 0xFFFF) {
        throw UsageError(option + ": \"" + language + "\" is no known language");
    }
    return langId;
}

std::string LanguageName(std::int32_t langId) {
    return std::to_string(langId);
}

}  // namespace generalutilities::cli
