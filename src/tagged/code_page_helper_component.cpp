#include "tagged/code_page_helper_component.h"

#include "frame/bstr_text.h"

namespace generalutilities {

void* CCodePageHelper::FindInterface(REFIID iid) noexcept {
    ICodePageHelper* const standard = this;
    ISupportErrorInfo* const errors = this;
    return FindInTable(iid, {{IID_IUnknown, standard},
                             {IID_ICodePageHelper, standard},
                             {IID_IDispatch, standard},
                             {IID_ISupportErrorInfo, errors}});
}

HRESULT CCodePageHelper::AddCodePage(std::int32_t CodePage, BSTR FontDef) noexcept {
    return Guarded([&] {
        wrapper.AddCodePage(static_cast<std::uint32_t>(CodePage), TerminatedView(FontDef));
        return S_OK;
    });
}

HRESULT CCodePageHelper::ResetCodePages() noexcept {
    wrapper.Reset();
    return S_OK;
}

HRESULT CCodePageHelper::AddFonts(BSTR s, BSTR* p) noexcept {
    if (p == nullptr) {
        return E_POINTER;
    }
    *p = nullptr;
    return Guarded([&] { return Give(wrapper.AddFonts(TerminatedView(s)), p); });
}

}  // namespace generalutilities
