#pragma once

#include <cstddef>

/// ASCII between bytes and code units, in whole blocks of 16: the vector half of every page that
/// holds ASCII. The widest form that the processor has is chosen at run time.
namespace generalutilities::code_pages {

inline constexpr std::size_t AsciiBlock = 16;

/// How far to go another way before looking for blocks again: two where there was ASCII just now,
/// else more of them, since a text in another script seldom changes.
constexpr std::size_t PlainRun(std::size_t asciiBefore) {
    return asciiBefore > 0 ? 2 * AsciiBlock : 16 * AsciiBlock;
}

/// Widens from the start, block by block for as long as they are whole and pure ASCII. Gives how
/// many bytes that were; what is written behind them is still to be overwritten.
std::size_t WidenAscii(const char* bytes, std::size_t length, char16_t* units);

/// The way back. Gives how many units that were.
std::size_t NarrowAscii(const char16_t* units, std::size_t length, char* bytes);

/// How many bytes, or units, blocks of pure ASCII at the start hold.
std::size_t SkipAscii(const char* bytes, std::size_t length);
std::size_t SkipAscii(const char16_t* units, std::size_t length);

}  // namespace generalutilities::code_pages
