#pragma once

#include <generalutilities/interfaces/draw_text.h>

#include "drawing/text_host_impl.h"
#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"
#include "platform/drawing/text_services.h"

#include <memory>

namespace generalutilities {

/// The class behind `UDrawText`: the host of text services, which draw and measure. It is quiet:
/// whatever cannot be done is left undone with success.
class CUDrawText : public Dual<IUDrawText, DescribeUDrawText>, public ITextHostImpl {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT DrawText(std::int32_t hHDC, BSTR bstrText, tagRECT* lpRect) noexcept override;
    HRESULT GetTextHeight(std::int32_t hDC, BSTR bstrText, std::int32_t lWidth,
                          std::int32_t* lHeight) noexcept override;
    HRESULT GetTextWidth(std::int32_t hDC, BSTR bstrText, std::int32_t* lWidth) noexcept override;

  private:
    template <class Use>
    HRESULT WithText(std::int32_t handle, BSTR text, bool colored, const Use& use) noexcept;

    std::unique_ptr<TextServices> textServices;  ///< from the first use on
};

}  // namespace generalutilities
