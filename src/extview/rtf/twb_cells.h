#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace generalutilities::rtf {

/// The numbers that a document gives to the styles of the bilingual layout; -1 for one it lacks.
struct TwbStyles {
    std::int32_t mark = -1;      ///< tw4winMark: the marks between which the texts stand
    std::int32_t external = -1;  ///< tw4winExternal: the identifier
    std::int32_t internal = -1;  ///< tw4winInternal: the codes in the texts
};

/// The row of a bilingual document, put together from its text runs and their styles alone.
///
/// A row is a sequence of cells: 0 the identifier, 1 the mark "{0>", 2 the source, 3 the mark "<}",
/// a number, "{>", 4 the target, 5 the mark "<0}", which ends it. A change of style begins a new
/// cell, except between a text and its codes. Marks with nothing between them come as one text and
/// are cut apart. A row with a damaged mark goes on into the next one and has more than six cells.
class TwbCells {
  public:
    static constexpr std::size_t CellsOfRow = 6;
    static constexpr std::size_t LeastCells = 5;  ///< with fewer, "<0}" ends no row

    /// A file begins: no run came before.
    void SetStyles(const TwbStyles& numbers) {
        styles = numbers;
        previousStyle = -1;
    }
    const TwbStyles& Styles() const { return styles; }

    /// A row begins: everything up to the next identifier is dropped.
    void BeginRow() {
        count = 0;
        isWaiting = true;
    }

    /// Adds the text of a run; true if it ends the row.
    bool Add(std::int32_t style, std::u16string_view text);

    std::size_t Count() const { return count; }
    /// Of the first five cells.
    std::u16string& operator[](std::size_t index) { return cells[index]; }

  private:
    void Open(std::u16string_view text);
    std::u16string& Last() { return cells[SlotOf(count - 1)]; }
    /// Of the cells behind the fifth only the last one matters.
    static std::size_t SlotOf(std::size_t cell) { return cell < LeastCells ? cell : LeastCells; }
    void FlushCodes();
    void SplitMarks();

    TwbStyles styles;
    std::array<std::u16string, LeastCells + 1> cells;  ///< keep their memory for the next row
    std::size_t count = 0;
    std::int32_t previousStyle = -1;
    bool isWaiting = false;   ///< for the identifier of a row
    bool isTextOpen = false;  ///< the last cell is a text, and text of another style continues it
    std::u16string codes;     ///< text in the style of codes that is in no cell yet
};

}  // namespace generalutilities::rtf
