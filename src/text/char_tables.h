#pragma once

#include "text/tables/accent_fold.h"
#include "text/tables/case.h"
#include "text/tables/char_category.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// What is known of each of the 65,536 code units, a surrogate being a character like any other.
///
/// Every table has two stages: the upper 11 bits of a code unit select a row of 32 entries, the
/// lower 5 bits the entry. Equal rows are kept once, so that the rows that a text of one script
/// touches stay in the first-level cache; every lookup is two array reads without a branch.
/// tools/generate_text_tables.py makes the arrays and says where the data come from.
namespace generalutilities {

namespace tables {

template <typename Entry, std::size_t Size>
constexpr Entry Lookup(const std::array<std::uint8_t, 2048>& index,
                       const std::array<Entry, Size>& rows, char16_t unit) {
    return rows[std::size_t{index[unit >> 5]} * 32 + (unit & 31)];
}

}  // namespace tables

/// The Unicode 3.2.0 general category in the low seven bits (numbered in the generator), or'ed with
/// 0x80 for Han, 0x100 for katakana and marks of both kana, 0x200 for hiragana.
constexpr std::uint16_t CharCategory(char16_t unit) {
    return tables::Lookup(tables::CharCategoryIndex, tables::CharCategoryRows, unit);
}

/// The four tests that tokenising rests on, as bits. They overlap: Han is a letter and East Asian.
/// Every code unit passes at least one of them.
namespace charclass {
inline constexpr std::uint8_t Letter = 1;     ///< letters and marks, Han included, kana not
inline constexpr std::uint8_t Number = 2;     ///< numbers of all scripts, Han's among them
inline constexpr std::uint8_t EastAsian = 4;  ///< Han, kana and their marks
inline constexpr std::uint8_t Separator = 8;  ///< all else, unassigned units and controls too
}  // namespace charclass

namespace tables {

constexpr std::uint8_t ClassesOfCategory(std::uint16_t category) {
    std::uint8_t classes = 0;
    if ((category & 0x370) == 0x10) {
        classes |= charclass::Letter;
    }
    if ((category & 0x78) == 0x08) {
        classes |= charclass::Number;
    }
    if ((category & 0x380) != 0) {
        classes |= charclass::EastAsian;
    }
    if (category == 0 || (category >= 0x20 && category < 0x3D)) {
        classes |= charclass::Separator;
    }
    return classes;
}

/// The same rows as CharCategoryRows with the answers in place of the categories.
inline constexpr auto CharClassRows = [] {
    std::array<std::uint8_t, CharCategoryRows.size()> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = ClassesOfCategory(CharCategoryRows[i]);
    }
    return rows;
}();

}  // namespace tables

/// All classes of a code unit, or'ed.
constexpr std::uint8_t CharClasses(char16_t unit) {
    return tables::Lookup(tables::CharCategoryIndex, tables::CharClassRows, unit);
}

constexpr bool IsLetter(char16_t unit) {
    return (CharClasses(unit) & charclass::Letter) != 0;
}
constexpr bool IsNumber(char16_t unit) {
    return (CharClasses(unit) & charclass::Number) != 0;
}
constexpr bool IsEastAsian(char16_t unit) {
    return (CharClasses(unit) & charclass::EastAsian) != 0;
}
constexpr bool IsSeparator(char16_t unit) {
    return (CharClasses(unit) & charclass::Separator) != 0;
}

/// The capital of a code unit, or the unit itself. An entry is what has to be added.
constexpr char16_t UpperCase(char16_t unit) {
    return static_cast<char16_t>(
        unit + tables::Lookup(tables::UpperCaseIndex, tables::UpperCaseRows, unit));
}

/// The small letter of a code unit, or the unit itself.
constexpr char16_t LowerCase(char16_t unit) {
    return static_cast<char16_t>(
        unit + tables::Lookup(tables::LowerCaseIndex, tables::LowerCaseRows, unit));
}

/// What accent removal makes of a code unit: 0 for the unit itself; a value for which
/// IsFoldSequence holds for two and more units (AccentFoldSequence); else the one replacement.
constexpr char16_t AccentFoldEntry(char16_t unit) {
    return static_cast<char16_t>(
        tables::Lookup(tables::AccentFoldIndex, tables::AccentFoldRows, unit));
}

/// No fold holds a surrogate, so the surrogates number the sequences.
constexpr bool IsFoldSequence(char16_t entry) {
    return entry >= 0xD800 && entry <= 0xDFFF;
}

/// The number of code units of a sequence: 2 to 18.
constexpr std::size_t AccentFoldSequenceLength(char16_t entry) {
    const std::size_t number = entry - std::size_t{0xD800};
    return std::size_t{tables::AccentFoldStarts[number + 1]} - tables::AccentFoldStarts[number];
}

/// The first code unit of a sequence.
constexpr const std::uint16_t* AccentFoldSequence(char16_t entry) {
    return &tables::AccentFoldPool[tables::AccentFoldStarts[entry - std::size_t{0xD800}]];
}

}  // namespace generalutilities
