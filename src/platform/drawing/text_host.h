#pragma once

#include <generalutilities/automation/device_context.h>
#include <generalutilities/automation/unknown.h>

#include <cstddef>

/// What text services ask of the object that hosts them, in the published form: a window's worth of
/// questions, most of which a host without a window answers with nothing.
namespace generalutilities {

/// One twip is 1/1440 inch.
inline constexpr int TwipsPerInch = 1440;

/// The format of characters, 116 bytes.
struct CHARFORMAT2W {
    std::uint32_t cbSize;
    std::uint32_t dwMask;
    std::uint32_t dwEffects;
    std::int32_t yHeight;  ///< twips
    std::int32_t yOffset;
    COLORREF crTextColor;
    std::uint8_t bCharSet;
    std::uint8_t bPitchAndFamily;
    char16_t szFaceName[32];
    std::uint16_t wWeight;
    std::int16_t sSpacing;
    COLORREF crBackColor;
    std::uint32_t lcid;
    std::uint32_t dwCookie;
    std::int16_t sStyle;
    std::uint16_t wKerning;
    std::uint8_t bUnderlineType;
    std::uint8_t bAnimation;
    std::uint8_t bRevAuthor;
    std::uint8_t bUnderlineColor;

    friend bool operator==(const CHARFORMAT2W&, const CHARFORMAT2W&) = default;
};
static_assert(sizeof(CHARFORMAT2W) == 116 && offsetof(CHARFORMAT2W, szFaceName) == 26);

enum : std::uint32_t {
    CFE_BOLD = 1,
    CFE_ITALIC = 2,
    CFE_UNDERLINE = 4,
    CFE_STRIKEOUT = 8,
    CFE_AUTOBACKCOLOR = 0x04000000,
};

/// The format of paragraphs, 188 bytes.
struct PARAFORMAT2 {
    std::uint32_t cbSize;
    std::uint32_t dwMask;
    std::uint16_t wNumbering;
    std::uint16_t wEffects;
    std::int32_t dxStartIndent;
    std::int32_t dxRightIndent;
    std::int32_t dxOffset;
    std::uint16_t wAlignment;
    std::int16_t cTabCount;
    std::int32_t rgxTabs[32];  ///< twips
    std::int32_t dySpaceBefore;
    std::int32_t dySpaceAfter;
    std::int32_t dyLineSpacing;
    std::int16_t sStyle;
    std::uint8_t bLineSpacingRule;
    std::uint8_t bOutlineLevel;
    std::uint16_t wShadingWeight;
    std::uint16_t wShadingStyle;
    std::uint16_t wNumberingStart;
    std::uint16_t wNumberingStyle;
    std::uint16_t wNumberingTab;
    std::uint16_t wBorderSpace;
    std::uint16_t wBorderWidth;
    std::uint16_t wBorders;
};
static_assert(sizeof(PARAFORMAT2) == 188 && offsetof(PARAFORMAT2, rgxTabs) == 28);

inline constexpr std::uint16_t PFA_LEFT = 1;

enum : std::uint32_t {
    TXTBIT_RICHTEXT = 1,
    TXTBIT_MULTILINE = 2,
    TXTBIT_SAVESELECTION = 0x40,
    TXTBIT_AUTOWORDSEL = 0x80,
    TXTBIT_WORDWRAP = 0x400,
    TXTBIT_ALLOWBEEP = 0x800,
    TXTBIT_CHARFORMATCHANGE = 0x20000,
    TXTBIT_USECURRENTBKG = 0x200000,
};

enum TXTBACKSTYLE : std::int32_t { TXTBACK_TRANSPARENT = 0, TXTBACK_OPAQUE = 1 };

struct POINT {
    std::int32_t x;
    std::int32_t y;
};
struct SIZE {
    std::int32_t cx;
    std::int32_t cy;
};

/// Booleans are 32-bit numbers here. Handles of windows, bitmaps and the like are addresses.
struct ITextHost : IUnknown {
    virtual std::int32_t TxGetDC() noexcept = 0;
    virtual std::int32_t TxReleaseDC(std::int32_t context) noexcept = 0;
    virtual std::int32_t TxShowScrollBar(std::int32_t bar, std::int32_t show) noexcept = 0;
    virtual std::int32_t TxEnableScrollBar(std::int32_t flags, std::int32_t arrows) noexcept = 0;
    virtual std::int32_t TxSetScrollRange(std::int32_t bar, std::int32_t least, std::int32_t most,
                                          std::int32_t redraw) noexcept = 0;
    virtual std::int32_t TxSetScrollPos(std::int32_t bar, std::int32_t position,
                                        std::int32_t redraw) noexcept = 0;
    virtual void TxInvalidateRect(const tagRECT* rectangle, std::int32_t mode) noexcept = 0;
    virtual void TxViewChange(std::int32_t update) noexcept = 0;
    virtual std::int32_t TxCreateCaret(void* bitmap, std::int32_t width,
                                       std::int32_t height) noexcept = 0;
    virtual std::int32_t TxShowCaret(std::int32_t show) noexcept = 0;
    virtual std::int32_t TxSetCaretPos(std::int32_t x, std::int32_t y) noexcept = 0;
    virtual std::int32_t TxSetTimer(std::uint32_t timer, std::uint32_t timeout) noexcept = 0;
    virtual void TxKillTimer(std::uint32_t timer) noexcept = 0;
    virtual void TxScrollWindowEx(std::int32_t dx, std::int32_t dy, const tagRECT* scroll,
                                  const tagRECT* clip, void* updateRegion, tagRECT* update,
                                  std::uint32_t flags) noexcept = 0;
    virtual void TxSetCapture(std::int32_t capture) noexcept = 0;
    virtual void TxSetFocus() noexcept = 0;
    virtual void TxSetCursor(void* cursor, std::int32_t text) noexcept = 0;
    virtual std::int32_t TxScreenToClient(POINT* point) noexcept = 0;
    virtual std::int32_t TxClientToScreen(POINT* point) noexcept = 0;
    virtual HRESULT TxActivate(std::int32_t* oldState) noexcept = 0;
    virtual HRESULT TxDeactivate(std::int32_t newState) noexcept = 0;
    virtual HRESULT TxGetClientRect(tagRECT* rectangle) noexcept = 0;
    virtual HRESULT TxGetViewInset(tagRECT* inset) noexcept = 0;
    virtual HRESULT TxGetCharFormat(const CHARFORMAT2W** format) noexcept = 0;
    virtual HRESULT TxGetParaFormat(const PARAFORMAT2** format) noexcept = 0;
    virtual COLORREF TxGetSysColor(std::int32_t index) noexcept = 0;
    virtual HRESULT TxGetBackStyle(TXTBACKSTYLE* style) noexcept = 0;
    virtual HRESULT TxGetMaxLength(std::uint32_t* length) noexcept = 0;
    virtual HRESULT TxGetScrollBars(std::uint32_t* bars) noexcept = 0;
    virtual HRESULT TxGetPasswordChar(char16_t* character) noexcept = 0;
    virtual HRESULT TxGetAcceleratorPos(std::int32_t* position) noexcept = 0;
    virtual HRESULT TxGetExtent(SIZE* extent) noexcept = 0;
    virtual HRESULT OnTxCharFormatChange(const CHARFORMAT2W* format) noexcept = 0;
    virtual HRESULT OnTxParaFormatChange(const PARAFORMAT2* format) noexcept = 0;
    virtual HRESULT TxGetPropertyBits(std::uint32_t mask, std::uint32_t* bits) noexcept = 0;
    virtual HRESULT TxNotify(std::uint32_t notification, void* data) noexcept = 0;
    virtual void* TxImmGetContext() noexcept = 0;
    virtual void TxImmReleaseContext(void* context) noexcept = 0;
    virtual HRESULT TxGetSelectionBarWidth(std::int32_t* width) noexcept = 0;
};

}  // namespace generalutilities
