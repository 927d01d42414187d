#pragma once

#include "extview/external_view_import.h"
#include "extview/rtf/rtf_reader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace generalutilities {

/// Reads the rows of an RTF table as the export writes it and a reviewer may have changed it.
///
/// Columns are known by their position alone: identifier, source, target, comments, status;
/// anything behind them is ignored. The first row is the heading. A row with fewer than two cells
/// ends the import, quietly, as if the file had ended there.
class CRTFImport : public CExternalViewImport, public CRTFReader {
  public:
    bool OpenFile() override;
    void CloseFile() override;
    bool ReadHeader() override;
    bool NextRow(std::u16string& id, std::u16string& source, std::u16string& target,
                 std::u16string& comments, std::int32_t& status) override;
    bool FileIsDamaged() const override { return ReadFailed(); }

    /// Reads one row whatever its number of cells; false when the file has ended before a row did.
    /// `NextRow` is this with a look at the cells.
    bool ReadCells();
    /// The first five cells of the row that was read, in file order. Each `\cell` opens a new one,
    /// so that a row of k table cells has k + 1: the last is what stands behind its last `\cell`.
    std::span<const std::u16string> Cells() const {
        return std::span(cells).first(std::min(cellCount, cells.size()));
    }
    /// The status that a cell holds: the decimal number at its start, behind white space and with
    /// an optional sign, kept to 32 bits by saturation; -1 if there is no digit.
    static std::int32_t StatusOf(std::u16string_view cell);

  protected:
    bool OnText(std::u16string_view text, std::uint32_t start, std::uint32_t end) override;
    bool OnControlWord(std::string_view word) override;

  private:
    void OpenCell();

    /// The cells of the row being read that anyone asks for. They keep their memory for the next
    /// row.
    std::array<std::u16string, 5> cells;
    std::size_t cellCount = 0;  ///< of all cells of the row
    std::int32_t lastPercent = -1;
};

}  // namespace generalutilities
