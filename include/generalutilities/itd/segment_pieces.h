#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The text of a segment on its way to a translator and back.
namespace generalutilities {

/// Characters as they are, or an inline code.
struct SegmentPiece {
    std::u16string text;     ///< empty for a code
    std::uint32_t code = 0;  ///< the number of a code, from 1; 0 for characters

    friend bool operator==(const SegmentPiece&, const SegmentPiece&) = default;
};
/// Neighbours are never both characters, and no piece is empty: equal texts have equal pieces.
using SegmentPieces = std::vector<SegmentPiece>;

/// Adds characters behind the last piece.
void AppendText(SegmentPieces& pieces, std::u16string_view text);
/// Adds a code behind the last piece.
void AppendCode(SegmentPieces& pieces, std::uint32_t code);

/// Segment text: "{n}" is the code n, and a backslash stands before each "\", "{" and "}" that is a
/// character. A unit that no file of text can hold (U+0000, half a surrogate pair) is a backslash,
/// "u" and four hexadecimal digits.
std::u16string SegmentTextOf(const SegmentPieces& pieces);

/// The pieces of a segment text. When the text is none, gives why, in words that a translator can
/// use, and `pieces` holds what stands before that place; otherwise gives an empty text.
std::string ParseSegmentText(std::u16string_view text, SegmentPieces& pieces);

/// A decimal number from 1 that fits 32 bits, without sign, blanks or leading zeros; 0 for all
/// else.
std::uint32_t ParseNumber(std::u16string_view digits);

/// Whether the unit at `position` is half a surrogate pair without its other half. A whole pair has
/// `length` 2, any other unit 1.
bool IsHalfPair(std::u16string_view text, std::size_t position, std::size_t& length);

}  // namespace generalutilities
