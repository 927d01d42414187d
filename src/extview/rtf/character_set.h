#pragma once

#include <cstdint>

namespace generalutilities::rtf {

/// The code page of a font's character set (the argument of `\fcharset`); -1 for an unknown one.
/// 0 is the system's ANSI code page and 42 the symbol page.
std::int32_t CodePageOfCharacterSet(std::int32_t characterSet);

}  // namespace generalutilities::rtf
