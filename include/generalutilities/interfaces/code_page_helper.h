#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// Wraps the runs of a text that leave the first code page in font tags of one that carries them
/// (docs/inline-codes.md).
struct ICodePageHelper : IDispatch {
    /// Appends a code page. `FontDef` is what stands in its font tag behind "<df "; neither is
    /// looked at. A page that is not served carries everything.
    virtual HRESULT AddCodePage(std::int32_t CodePage, BSTR FontDef) noexcept = 0;
    virtual HRESULT ResetCodePages() noexcept = 0;
    /// A text whose tags cannot be scanned comes back unchanged, and so does any text while there
    /// are no code pages.
    virtual HRESULT AddFonts(BSTR s, BSTR* p) noexcept = 0;
};
inline constexpr IID IID_ICodePageHelper = MakeGuid("{8E0D937B-90B6-4781-AB8F-827AFCAA3048}");

}  // namespace generalutilities
