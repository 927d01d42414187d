#include "text/tables/language_names.h"

#include <generalutilities/text/languages.h>

#include "platform/string_tables/string_tables.h"

#include <iterator>

namespace generalutilities {

std::optional<std::u16string_view> LanguageNativeName(std::int32_t langId) noexcept {
    return FindString({tables::LanguageNames, std::size(tables::LanguageNames)}, langId);
}

}  // namespace generalutilities
