#include "color.h"

#include <charconv>

namespace generalutilities::cli {

std::string CheckColor(const std::string& text) {
    const bool wellFormed = text.size() == 7 && text[0] == '#' &&
                            text.find_first_not_of("0123456789abcdefABCDEF", 1) == text.npos;
    return wellFormed ? "" : "\"" + text + "\" is no colour; write #RRGGBB, such as #FFCC00";
}

std::int32_t ParseColor(const std::string& text) {
    std::int32_t rgb = 0;
    std::from_chars(text.data() + 1, text.data() + text.size(), rgb, 16);
    return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

}  // namespace generalutilities::cli
