#include "drawing/draw_text_component.h"

#include "drawing/device_contexts.h"
#include "frame/bstr_text.h"

namespace generalutilities {

namespace {

/// Room in which a text breaks at its own line ends alone.
constexpr std::int32_t WidestLine = 32767;

}  // namespace

void* CUDrawText::FindInterface(REFIID iid) noexcept {
    IUDrawText* const standard = this;
    return FindInTable(
        iid, {{IID_IUnknown, standard}, {IID_IDispatch, standard}, {IID_IUDrawText, standard}});
}

/// Gives the services the text in the context's font, and runs `use(context)` if there are any. An
/// unknown context is null and has the stock font.
template <class Use>
HRESULT CUDrawText::WithText(std::int32_t handle, BSTR text, bool colored,
                             const Use& use) noexcept {
    return Guarded([&] {
        const std::shared_ptr<DeviceContext> context = FindDeviceContext(handle);
        charFormat = FontFormat(context == nullptr ? StockFont : context->font);
        if (textServices == nullptr) {
            textServices = CreateTextServices(*this);
        }
        if (textServices == nullptr) {
            return S_OK;
        }
        if (colored && context != nullptr) {
            charFormat.crTextColor = context->textColor;
        }
        textServices->OnTxPropertyBitsChange(TXTBIT_CHARFORMATCHANGE, TXTBIT_CHARFORMATCHANGE);
        textServices->TxSetText(text == nullptr ? std::u16string_view() : TerminatedView(text));
        use(context.get());
        return S_OK;
    });
}

HRESULT CUDrawText::DrawText(std::int32_t hHDC, BSTR bstrText, tagRECT* lpRect) noexcept {
    return WithText(hHDC, bstrText, true, [&](DeviceContext* context) {
        if (context != nullptr && lpRect != nullptr) {
            textServices->TxDraw(*context, *lpRect);
        }
    });
}

HRESULT CUDrawText::GetTextHeight(std::int32_t hDC, BSTR bstrText, std::int32_t lWidth,
                                  std::int32_t* lHeight) noexcept {
    return WithText(hDC, bstrText, false, [&](DeviceContext* context) {
        if (lHeight != nullptr) {
            *lHeight = textServices->TxGetNaturalSize(context, lWidth).cy;
        }
    });
}

HRESULT CUDrawText::GetTextWidth(std::int32_t hDC, BSTR bstrText, std::int32_t* lWidth) noexcept {
    return WithText(hDC, bstrText, false, [&](DeviceContext* context) {
        if (lWidth != nullptr) {
            *lWidth = textServices->TxGetNaturalSize(context, WidestLine).cx;
        }
    });
}

}  // namespace generalutilities
