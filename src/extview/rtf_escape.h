#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace generalutilities::rtf {

/// Appends `text` as the running text of an RTF file, in 7-bit characters: control characters of
/// the format escaped, line ends and tabs as control words, everything else beyond ASCII as \u with
/// its unsigned value. CR, LF and CR LF are one line end each.
void AppendEscaped(std::u16string& output, std::u16string_view text);

/// Appends segment text as the text of a TWB document. Other than `AppendEscaped`: a placeholder
/// such as "{12}", unless its brace is escaped by a backslash, becomes a code in the style of
/// inline codes; a line end becomes \line, a tab \'09; and where one of the escapes \\, \{ and
/// \} stands behind \line, the blank that ends such a word comes before the next plain unit.
void AppendSegment(std::u16string& output, std::u16string_view text);

/// How many units at the start of a text stand for themselves in RTF.
std::size_t PlainRunUnitByUnit(std::u16string_view text) noexcept;
std::size_t PlainRunByBlocks(std::u16string_view text) noexcept;

/// Which ones of a block of 32 units do not, the first in the lowest bit. These two jobs have two
/// forms each, which give the same answers; the second one needs HasAvx2() (platform/cpu.h).
inline constexpr std::size_t EscapeBlock = 32;
std::uint32_t FindEscapesUnitByUnit(const char16_t* block) noexcept;
std::uint32_t FindEscapesByBlocks(const char16_t* block) noexcept;

}  // namespace generalutilities::rtf
