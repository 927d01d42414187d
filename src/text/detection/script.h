#pragma once

#include <cstddef>
#include <cstdint>

namespace generalutilities::detection {

/// Writing systems as far as languages have to be told apart within them.
enum class Script : std::uint8_t {
    None,  ///< no letter
    Latin,
    Greek,
    Cyrillic,
    Armenian,
    Hebrew,
    Arabic,
    Devanagari,
    Bengali,
    Gurmukhi,
    Gujarati,
    Oriya,
    Tamil,
    Telugu,
    Kannada,
    Malayalam,
    Sinhala,
    Thai,
    Lao,
    Tibetan,
    Burmese,
    Georgian,
    Hangul,
    Ethiopic,
    Khmer,
    Han,  ///< with both kana and bopomofo
    Other
};
inline constexpr std::size_t ScriptCount = static_cast<std::size_t>(Script::Other) + 1;

/// The script of a letter; `None` for what is no letter or mark.
Script ScriptOf(char16_t unit);

}  // namespace generalutilities::detection
