#include "code_page.h"

#include "failure.h"

#include <cstdio>

namespace generalutilities::cli {

std::unique_ptr<CodePageConverter> OpenNamedCodePage(const std::string& option,
                                                     std::uint32_t number) {
    auto converter = OpenCodePage(number);
    if (converter == nullptr) {
        throw UsageError(option + " " + std::to_string(number) +
                         ": this code page is not served; genutil codepage list shows all");
    }
    return converter;
}

std::string CodePointAt(std::u16string_view text, std::size_t index) {
    std::uint32_t value = text[index];
    if ((value & 0xFC00) == 0xD800 && index + 1 < text.size() &&
        (text[index + 1] & 0xFC00) == 0xDC00) {
        value = 0x10000 + ((value & 0x3FF) << 10) + (text[index + 1] & 0x3FFU);
    }
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(value));
    return name;
}

}  // namespace generalutilities::cli
