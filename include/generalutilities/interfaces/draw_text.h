#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// Draws and measures text on a device context, which travels as a handle.
struct IUDrawText : IDispatch {
    virtual HRESULT DrawText(std::int32_t hHDC, BSTR bstrText, tagRECT* lpRect) noexcept = 0;
    virtual HRESULT GetTextHeight(std::int32_t hDC, BSTR bstrText, std::int32_t lWidth,
                                  std::int32_t* lHeight) noexcept = 0;
    virtual HRESULT GetTextWidth(std::int32_t hDC, BSTR bstrText,
                                 std::int32_t* lWidth) noexcept = 0;
};
inline constexpr IID IID_IUDrawText = MakeGuid("{40332313-9178-45D7-B4C3-3D5160F0E993}");

}  // namespace generalutilities
