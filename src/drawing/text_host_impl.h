#pragma once

#include "drawing/char_format.h"
#include "platform/drawing/device_context.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace generalutilities {

/// The host of windowless text services: it has formats and properties, and neither a window nor a
/// caret, a scroll bar or an input method. Whatever is about these is answered with nothing.
class ITextHostImpl : public ITextHost {
  public:
    ITextHostImpl() {
        paraFormat.cbSize = sizeof paraFormat;
        paraFormat.dwMask = 0x8001003F;
        paraFormat.wAlignment = PFA_LEFT;
        paraFormat.cTabCount = 1;
        paraFormat.rgxTabs[0] = TwipsPerInch / 2;
    }

    std::int32_t TxGetDC() noexcept override { return 0; }
    std::int32_t TxReleaseDC(std::int32_t) noexcept override { return 1; }
    std::int32_t TxShowScrollBar(std::int32_t, std::int32_t) noexcept override { return 0; }
    std::int32_t TxEnableScrollBar(std::int32_t, std::int32_t) noexcept override { return 0; }
    std::int32_t TxSetScrollRange(std::int32_t, std::int32_t, std::int32_t,
                                  std::int32_t) noexcept override {
        return 0;
    }
    std::int32_t TxSetScrollPos(std::int32_t, std::int32_t, std::int32_t) noexcept override {
        return 0;
    }
    void TxInvalidateRect(const tagRECT*, std::int32_t) noexcept override {}
    void TxViewChange(std::int32_t) noexcept override {}
    std::int32_t TxCreateCaret(void*, std::int32_t, std::int32_t) noexcept override { return 0; }
    std::int32_t TxShowCaret(std::int32_t) noexcept override { return 0; }
    std::int32_t TxSetCaretPos(std::int32_t, std::int32_t) noexcept override { return 0; }
    std::int32_t TxSetTimer(std::uint32_t, std::uint32_t) noexcept override { return 0; }
    void TxKillTimer(std::uint32_t) noexcept override {}
    void TxScrollWindowEx(std::int32_t, std::int32_t, const tagRECT*, const tagRECT*, void*,
                          tagRECT*, std::uint32_t) noexcept override {}
    void TxSetCapture(std::int32_t) noexcept override {}
    void TxSetFocus() noexcept override {}
    void TxSetCursor(void*, std::int32_t) noexcept override {}
    std::int32_t TxScreenToClient(POINT*) noexcept override { return 0; }
    std::int32_t TxClientToScreen(POINT*) noexcept override { return 0; }
    HRESULT TxActivate(std::int32_t*) noexcept override { return S_OK; }
    HRESULT TxDeactivate(std::int32_t) noexcept override { return S_OK; }
    HRESULT TxGetClientRect(tagRECT* rectangle) noexcept override { return Give({}, rectangle); }
    HRESULT TxGetViewInset(tagRECT* inset) noexcept override { return Give({}, inset); }
    HRESULT TxGetCharFormat(const CHARFORMAT2W** format) noexcept override {
        return Give(&charFormat, format);
    }
    HRESULT TxGetParaFormat(const PARAFORMAT2** format) noexcept override {
        return Give(&paraFormat, format);
    }
    /// Black letters on white, in selections too.
    COLORREF TxGetSysColor(std::int32_t index) noexcept override {
        constexpr std::int32_t WindowText = 8;
        constexpr std::int32_t HighlightText = 14;
        constexpr COLORREF White = 0xFFFFFF;
        return index == WindowText || index == HighlightText ? 0 : White;
    }
    HRESULT TxGetBackStyle(TXTBACKSTYLE* style) noexcept override {
        return Give(TXTBACK_TRANSPARENT, style);
    }
    HRESULT TxGetMaxLength(std::uint32_t* length) noexcept override {
        return Give(0xFFFFFFFF, length);
    }
    HRESULT TxGetScrollBars(std::uint32_t* bars) noexcept override { return Give(0, bars); }
    HRESULT TxGetPasswordChar(char16_t*) noexcept override { return S_FALSE; }
    HRESULT TxGetAcceleratorPos(std::int32_t* position) noexcept override {
        return Give(-1, position);
    }
    HRESULT TxGetExtent(SIZE*) noexcept override { return E_NOTIMPL; }
    HRESULT OnTxCharFormatChange(const CHARFORMAT2W* format) noexcept override {
        return Take(format, charFormat);
    }
    HRESULT OnTxParaFormatChange(const PARAFORMAT2* format) noexcept override {
        return Take(format, paraFormat);
    }
    HRESULT TxGetPropertyBits(std::uint32_t, std::uint32_t* bits) noexcept override {
        return Give(TXTBIT_RICHTEXT | TXTBIT_MULTILINE | TXTBIT_SAVESELECTION | TXTBIT_AUTOWORDSEL |
                        TXTBIT_WORDWRAP | TXTBIT_ALLOWBEEP | TXTBIT_USECURRENTBKG,
                    bits);
    }
    HRESULT TxNotify(std::uint32_t, void*) noexcept override { return S_OK; }
    void* TxImmGetContext() noexcept override { return nullptr; }
    void TxImmReleaseContext(void*) noexcept override {}
    HRESULT TxGetSelectionBarWidth(std::int32_t* width) noexcept override { return Give(0, width); }

  protected:
    CHARFORMAT2W charFormat = FontFormat(StockFont);
    PARAFORMAT2 paraFormat{};

  private:
    template <class Value>
    static HRESULT Give(std::type_identity_t<Value> value, Value* out) {
        *out = value;
        return S_OK;
    }
    template <class Format>
    static HRESULT Take(const Format* given, Format& kept) {
        std::memcpy(&kept, given, std::min<std::size_t>(given->cbSize, sizeof kept));
        return S_OK;
    }
};

}  // namespace generalutilities
