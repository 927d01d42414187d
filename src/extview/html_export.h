#pragma once

#include "extview/external_view_export.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities {

/// The table as a page to read: a heading row and a row a segment, coloured by status. There is no
/// way back from it. Text directions and hidden columns play no part; the bytes are described in
/// docs/external-view-format.md.
class CHTMLExport : public CExternalViewExport {
  public:
    using CExternalViewExport::CExternalViewExport;

  protected:
    bool OpenOutput() override;
    void AddColor(std::int32_t rgb) override;
    void PrepareLayout() override {}
    void WriteHeader() override;
    void WriteFooter() override;
    void WriteRow(std::u16string_view id, std::u16string_view source, std::u16string_view target,
                  std::u16string_view comments, std::int32_t status, std::u16string_view fileName,
                  std::int32_t percentage) override;

  private:
    std::vector<std::u16string> colorTexts;  ///< "#RRGGBB" by colour number; empty for number 0
    std::u16string row;                      ///< the row being built, kept for its memory
    std::u16string coloredCell;              ///< the start of a coloured cell of this row
};

namespace html {

/// Appends `text` as the text of a page: "<", ">" and "&" as entities, and of each run of blanks
/// all but the first as "&nbsp;", so that the page shows them. Line ends stay as they are.
void AppendText(std::u16string& output, std::u16string_view text);

}  // namespace html

}  // namespace generalutilities
