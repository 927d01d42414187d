#pragma once

#include "extview/external_view_export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace generalutilities {

/// The RTF table that a reviewer edits in a word processor: a heading row and a row a segment. The
/// bytes are a contract (docs/external-view-format.md): the way back finds the cells by them.
class CExternalViewRTFExport : public CExternalViewExport {
  public:
    using CExternalViewExport::CExternalViewExport;

  protected:
    bool OpenOutput() override;
    void AddColor(std::int32_t rgb) override;
    void PrepareLayout() override;
    void WriteHeader() override;
    void WriteFooter() override;
    void WriteRow(std::u16string_view id, std::u16string_view source, std::u16string_view target,
                  std::u16string_view comments, std::int32_t status, std::u16string_view fileName,
                  std::int32_t percentage) override;

  private:
    static constexpr std::int32_t tableWidth = 8600;  // twips
    static constexpr std::int32_t fontSize = 18;      // half points

    /// The columns from left to right; those that an option switches off have no cell.
    enum Column { IdColumn, SourceColumn, TargetColumn, CommentsColumn, StatusColumn, FileColumn };
    static constexpr int ColumnCount = 6;

    /// The width of the columns in relation to each other, source and target as one.
    struct ColumnShare {
        static constexpr float Id = 10.0F;
        static constexpr float SourceAndTarget = 50.0F;
        static constexpr float Comments = 10.0F;
        static constexpr float Status = 10.0F;
        static constexpr float File = 20.0F;
    };

    void ComputeCellEdges();
    /// The paragraph text of one of the three fonts: 0 the table's own, 1 source, 2 target.
    static std::u16string Para(int font);
    /// The definitions of the cells from the first through the comments, filled with `fill`.
    void AppendRowDefinition(std::u16string& text, std::u16string_view fill) const;
    void AppendCellDefinition(std::u16string& text, std::u16string_view fill, Column column) const;
    void BuildCellStarts();

    std::u16string colorTable;
    std::int32_t cellRightEdge[ColumnCount] = {};  // twips
    std::u16string border;
    std::u16string rowPrefix;               // the row definition of an uncoloured row
    std::u16string cellStart[ColumnCount];  // what stands in front of the text of each cell
    std::u16string row;                     // the row being built, kept for its memory
};

}  // namespace generalutilities
