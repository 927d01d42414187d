#pragma once

#include <string>
#include <string_view>

namespace generalutilities {

/// Writes `text` to `out`, which has room for as many code units, with the digits of all scripts as
/// ASCII digits: decimal digits, superscripts and subscripts, Roman and Han numerals, circled and
/// parenthesised numbers from 0 to 9. With `mapAllNumerals` every other numeral (fractions, tens,
/// hundreds ...) becomes "0". Each code unit is taken alone; no numbers are worked out. `out` may
/// be the text itself.
void FoldDigitsTo(std::u16string_view text, bool mapAllNumerals, char16_t* out);

/// The same as a new string of the same length.
std::u16string FoldDigits(std::u16string_view text, bool mapAllNumerals = true);

}  // namespace generalutilities
