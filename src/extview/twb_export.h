#pragma once

#include "extview/external_view_export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace generalutilities {

/// A bilingual document: a paragraph a segment, the source in hidden text, the target between marks
/// in the styles of the tw4win tools. The reader finds segments and codes by the names of these
/// styles. The identifier is always there; comments, statuses, file names and colours never are.
/// The bytes are described in docs/external-view-format.md.
class CExternalViewTWBExport : public CExternalViewExport {
  public:
    using CExternalViewExport::CExternalViewExport;

  protected:
    bool OpenOutput() override;
    void AddColor(std::int32_t) override {}
    void PrepareLayout() override {}
    void WriteHeader() override;
    void WriteFooter() override;
    void WriteRow(std::u16string_view id, std::u16string_view source, std::u16string_view target,
                  std::u16string_view comments, std::int32_t status, std::u16string_view fileName,
                  std::int32_t percentage) override;

  private:
    std::int32_t MatchValue(std::int32_t status, std::int32_t percentage) const;

    std::u16string row;  ///< the row being built, kept for its memory
};

}  // namespace generalutilities
