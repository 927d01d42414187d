#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// Conversion by rows, the vector half of pages with one byte a character.
///
/// A script lies in its page mostly as it lies in Unicode: of the sixteen bytes with one upper
/// digit many become sixteen characters in a row, with the same lower digit. Where that is so, a
/// table of sixteen rows says all, and such a table fits a vector register. What does not lie so is
/// noticed and looked up one by one.
namespace generalutilities::code_pages {

/// Which of 256 places a table of rows tells: those for whose lower digit `members` has a bit in
/// common with `row` for their upper one. Whole rows share a bit; rows with gaps have one each
/// while they last.
class Places {
  public:
    static constexpr std::uint16_t Whole = 0xFFFF;

    Places() { members.fill(WholeRow); }

    /// Enters a row by the places in it, a bit each. False where no bit is left.
    bool Enter(std::size_t index, std::uint16_t places);

    alignas(16) std::array<std::uint8_t, 16> row{};
    alignas(16) std::array<std::uint8_t, 16> members{};

  private:
    static constexpr std::uint8_t WholeRow = 1;
    std::uint8_t nextBit = WholeRow << 1;
};

/// A row whose places go anywhere, told one by one: each value exclusive-or what the rows would
/// make of it, which is its own lower digit.
struct ScatteredRow {
    std::uint8_t first = 0;  ///< the lower half of its first place
    alignas(16) std::array<std::uint8_t, 16> low{};
    alignas(16) std::array<std::uint8_t, 16> high{};
};

/// For each row of bytes the row of characters that it becomes, as the two halves of its first
/// character. Of the other rows the first two, where Windows pages have their quotation marks and
/// dashes, are told one by one.
struct ByteRows {
    explicit ByteRows(const std::array<char16_t, 256>& characters);

    Places places;
    alignas(16) std::array<std::uint8_t, 16> low{};
    alignas(16) std::array<std::uint8_t, 16> high{};
    std::array<ScatteredRow, 2> scattered;
};

/// For the characters with one upper half the row of bytes that each of their rows becomes.
struct CharacterRows {
    /// `bytes` tells the byte of every code unit, `characters` what each byte becomes.
    CharacterRows(std::uint8_t upperHalf, std::span<const unsigned char> bytes,
                  const std::array<char16_t, 256>& characters);

    std::uint8_t upper;
    int count = 0;  ///< of the characters that are told so
    Places places;
    alignas(16) std::array<std::uint8_t, 16> base{};
};

/// The quotation marks and dashes, U+2010 to U+202F, as bytes, one by one.
struct PunctuationRows {
    static constexpr std::uint8_t Upper = 0x20;

    PunctuationRows(std::span<const unsigned char> bytes,
                    const std::array<char16_t, 256>& characters);

    std::array<ScatteredRow, 2> rows;  ///< without the upper halves
};

/// Decodes blocks of 32 bytes for as long as they are whole, and gives how many bytes that were; 0
/// on a processor without the instructions.
std::size_t DecodeByRows(const ByteRows& rows, const std::array<char16_t, 256>& characters,
                         const char* bytes, std::size_t length, char16_t* units);

/// The way back, with the rows of two upper halves.
std::size_t EncodeByRows(const CharacterRows& first, const CharacterRows& second,
                         const PunctuationRows& punctuation, const unsigned char* byteOf,
                         const char16_t* units, std::size_t length, char* bytes);

}  // namespace generalutilities::code_pages
