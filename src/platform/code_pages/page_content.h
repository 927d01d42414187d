#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

/// What a converter says of a page of one or two bytes a character, asked once for every byte, pair
/// of bytes and code unit, so that the tables can be built from constants.
///
/// Control characters stand for themselves in every page with ASCII in its lower half, and all of
/// ASCII does in the pages of iconv: the IBM forms of some converters, which turn the control
/// characters round, and the won sign of 1361 are not what the Windows pages of these numbers do.
namespace generalutilities::code_pages {

struct PageContent {
    /// Stands in `single` for a byte that begins a pair. No page maps anything to a noncharacter.
    static constexpr char16_t Lead = 0xFFFF;
    /// Stands for bytes without a character.
    static constexpr char16_t Undefined = 0xFFFE;
    /// Stands in `codes` for a code unit that is not in the page; no byte and no pair has it.
    static constexpr std::uint16_t NoCode = 0x100;

    static constexpr std::size_t PairIndex(unsigned char lead, unsigned char trail) {
        return static_cast<std::size_t>(lead - 0x80) << 8 | trail;
    }

    std::array<char16_t, 256> single{};
    std::vector<char16_t> pairs;       ///< by `PairIndex`; empty for a page of single bytes
    std::vector<std::uint16_t> codes;  ///< by code unit: the byte, or the pair with its lead on top
};

/// From the converter of this name; null where there is none, or where its characters are more than
/// a pair of bytes or need a state.
std::unique_ptr<const PageContent> ReadIcuPage(const char* converterName);
std::unique_ptr<const PageContent> ReadIconvPage(const char* charsetName);
/// The symbol page: 0x20 to 0xFF lie at U+F020 to U+F0FF of the private use area.
std::unique_ptr<const PageContent> SymbolPage();

}  // namespace generalutilities::code_pages
