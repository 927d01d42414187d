#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Tables with one entry for each of the 65,536 code units, spread out from those of char_tables.h
/// while compiling: a lookup is one array read, more than twice as fast as two that depend on each
/// other. They serve the loops over whole texts, which touch only the lines of a text's scripts.
namespace generalutilities::flat {

template <typename Entry>
using Table = std::array<Entry, 0x10000>;

/// The capital and the small letter, or the unit itself.
extern const Table<char16_t> Upper;
extern const Table<char16_t> Lower;

/// The unit without its accents, or the unit itself. For a unit that becomes several it is the
/// number of the sequence, a surrogate (char_tables.h); surrogates themselves stay.
extern const Table<char16_t> Unaccented;

/// How far the units of a page, 128 in a row, are moved by a change of case: bytes, which fit into
/// vector registers. The pages are those of Greek, Cyrillic and Armenian; Latin letters have none,
/// since a text never stays in one page of them.
inline constexpr std::size_t PageSize = 128;
inline constexpr std::size_t FirstPage = 0x0380 / PageSize;
inline constexpr std::size_t LastPage = 0x0580 / PageSize;

using Page = std::array<std::int8_t, PageSize>;
using Pages = std::array<Page, LastPage - FirstPage + 1>;

extern const Pages UpperPages;
extern const Pages LowerPages;

/// The classes of each unit (char_tables.h) and, in the uppermost bits, what it is where a whole
/// text is cut into words: special first, then East Asian, then a letter; no bit for a separator.
inline constexpr std::uint8_t KindLetter = 0x80;
inline constexpr std::uint8_t KindEastAsian = 0x40;
inline constexpr std::uint8_t KindSpecial = 0x20;  ///< a number, "&" or "'"
extern const Table<std::uint8_t> Classes;

}  // namespace generalutilities::flat
