#pragma once

#include "extview/external_view_import.h"
#include "extview/rtf/rtf_reader.h"
#include "extview/rtf/twb_cells.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace generalutilities {

/// Reads the rows of a bilingual document as the TWB export writes it and a reviewer may have
/// changed it. Which text is what follows from the names of the styles alone.
///
/// Text in the style of the marks or of the codes that is neither is dropped, and a row whose marks
/// are damaged goes on into the next one, both without a word; the preparation of a reviewed file
/// (prepare_review.h) tells and mends the first. What a file leaves behind stays with the object:
/// the numbers of its styles count for the next file, too, so a host takes a fresh object for each.
class CTWBImport : public CExternalViewImport, public CRTFReader {
  public:
    bool OpenFile() override;
    void CloseFile() override;
    /// False if the style sheet lacks the style of the marks or the one of the identifiers.
    bool ReadHeader() override;
    bool NextRow(std::u16string& id, std::u16string& source, std::u16string& target,
                 std::u16string& comments, std::int32_t& status) override;
    bool FileIsDamaged() const override { return ReadFailed(); }

    /// Whether a file can be opened and has the styles and a row.
    bool IsTWBFile(std::u16string_view fileName);

    /// After `Prepare`, once: see `IsBilingualDocument`.
    bool IsBilingual();
    const rtf::TwbStyles& Styles() const { return cells.Styles(); }

    /// How many cells the row has that was read; six, unless its marks are damaged. After the last
    /// row: of a row that the end of the file cuts off.
    std::size_t CellCount() const { return cells.Count(); }
    /// Reads the identifier of such a row. `id` keeps what it is if the row has none.
    void ReadId(std::u16string& id);

  protected:
    bool OnText(std::u16string_view text, std::uint32_t start, std::uint32_t end) override;

  private:
    bool FindStyles();

    rtf::TwbCells cells;
    std::int32_t lastPercent = -1;
};

}  // namespace generalutilities
