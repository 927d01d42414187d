#pragma once

#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/tagged/font_wrapping.h>
#include <generalutilities/text/code_page_fit.h>

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

namespace generalutilities {

/// The class behind `CodePageHelper`: a `FontWrapper` on the code pages of the platform.
class CCodePageHelper : public Dual<ICodePageHelper, DescribeCodePageHelper>,
                        public RichErrors<IID_ICodePageHelper> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT AddCodePage(std::int32_t CodePage, BSTR FontDef) noexcept override;
    HRESULT ResetCodePages() noexcept override;
    HRESULT AddFonts(BSTR s, BSTR* p) noexcept override;

  private:
    FontWrapper wrapper{FitsCodePage};
};

}  // namespace generalutilities
