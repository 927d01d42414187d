#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// Wraps the runs of a text that leave the first code page in font tags of one that carries them.
struct ICodePageHelper : IDispatch {
    virtual HRESULT AddCodePage(std::int32_t CodePage, BSTR FontDef) noexcept = 0;
    virtual HRESULT ResetCodePages() noexcept = 0;
    virtual HRESULT AddFonts(BSTR s, BSTR* p) noexcept = 0;
};
inline constexpr IID IID_ICodePageHelper = MakeGuid("{8E0D937B-90B6-4781-AB8F-827AFCAA3048}");

}  // namespace generalutilities
