#pragma once

#include <generalutilities/automation/functions.h>

/// Device contexts: what `UDrawText` draws on. A context has a surface, a selected font and a text
/// colour, and is reached by a handle of the process-wide table (`HandleFromPointer`), which every
/// function here takes or gives. docs/drawing.md walks through an example.
///
/// A device unit is 1/96 inch on every surface: a pixel of an image, three quarters of a point of a
/// PDF or SVG page, a user unit of a caller's Cairo context. x grows to the right, y downwards.
///
/// A context is used by one thread at a time, and may move from one thread to another. Contexts on
/// different threads are independent.
///
/// All functions give E_INVALIDARG for a handle that stands for no open context, for a null pointer
/// and for a number out of its range, E_OUTOFMEMORY when memory is out, and E_FAIL where drawing
/// libraries or a file fail; E_FAIL leaves an error object that says why (`GetErrorInfo`).
namespace generalutilities {

/// A colour as 0x00BBGGRR; the highest byte is ignored.
using COLORREF = std::uint32_t;

/// The font that is wanted, 60 bytes. Which font serves it is the business of the machine's font
/// configuration: a family that is not there is replaced by one that is, and characters that it
/// lacks come from others.
struct LOGFONT {
    /// Height of the letters in device units; its sign does not matter, 0 stands for 16.
    std::int32_t lfHeight = 0;
    std::int32_t lfWidth = 0;  ///< this and the two angles below are kept and not used
    std::int32_t lfEscapement = 0;
    std::int32_t lfOrientation = 0;
    std::int32_t lfWeight = 0;  ///< 700 and more is bold
    std::uint8_t lfItalic = 0;  ///< any value but 0, as with the next two
    std::uint8_t lfUnderline = 0;
    std::uint8_t lfStrikeOut = 0;
    /// 128, 129, 134 and 136 choose the Han forms of Japanese, Korean and the two Chinese scripts.
    std::uint8_t lfCharSet = 0;
    std::uint8_t lfOutPrecision = 0;  ///< this and the next two are kept and not used
    std::uint8_t lfClipPrecision = 0;
    std::uint8_t lfQuality = 0;
    /// What replaces a missing family: 1 or 0x30 fixed, 0x10 with serifs, all else without.
    std::uint8_t lfPitchAndFamily = 0;
    char lfFaceName[32] = {};  ///< the family, in code page 1252, ended by a zero byte
};
static_assert(sizeof(LOGFONT) == 60 && offsetof(LOGFONT, lfFaceName) == 28);

/// The pixels of an image, row by row from the top. A pixel is 0xAARRGGBB with the colours
/// multiplied by the alpha; a new image is transparent black.
struct DeviceContextPixels {
    const std::uint32_t* first;
    std::int32_t width;
    std::int32_t height;
    std::int32_t stride;  ///< pixels from one row to the next
};
static_assert(sizeof(DeviceContextPixels) == 24);

extern "C" {

/// A context over a new image of 1 to 32,767 device units each way.
GENERALUTILITIES_API HRESULT CreateImageDeviceContext(std::int32_t width, std::int32_t height,
                                                      std::int32_t* context) noexcept;
/// A context over a PDF file of one page, of 1 to 1,000,000 device units each way. An
/// existing file of that name is replaced. The file is complete when the context has been closed.
GENERALUTILITIES_API HRESULT CreatePdfDeviceContext(const char16_t* path, std::int32_t width,
                                                    std::int32_t height,
                                                    std::int32_t* context) noexcept;
/// The same over an SVG file.
GENERALUTILITIES_API HRESULT CreateSvgDeviceContext(const char16_t* path, std::int32_t width,
                                                    std::int32_t height,
                                                    std::int32_t* context) noexcept;
/// A context over a Cairo context (`cairo_t*`) of the caller, which is referenced until the device
/// context is closed. Drawing uses its transformation and clip, and leaves its state as it was.
GENERALUTILITIES_API HRESULT CreateCairoDeviceContext(void* cairo, std::int32_t* context) noexcept;

/// Selects a font; a new context has letters of 16 units of the default family. The font is copied.
GENERALUTILITIES_API HRESULT SelectDeviceContextFont(std::int32_t context,
                                                     const LOGFONT* font) noexcept;
/// A copy of the font that is selected.
GENERALUTILITIES_API HRESULT GetDeviceContextFont(std::int32_t context, LOGFONT* font) noexcept;
/// The colour of text; black in a new context.
GENERALUTILITIES_API HRESULT SetDeviceContextTextColor(std::int32_t context,
                                                       COLORREF color) noexcept;
/// The colour that text is drawn in.
GENERALUTILITIES_API HRESULT GetDeviceContextTextColor(std::int32_t context,
                                                       COLORREF* color) noexcept;

/// Covers the whole surface with a colour; of a caller's Cairo context what its clip leaves.
GENERALUTILITIES_API HRESULT FillDeviceContext(std::int32_t context, COLORREF color) noexcept;

/// The pixels of an image context (E_INVALIDARG for any other), which stay the context's: they are
/// there until it is closed and change with what is drawn.
GENERALUTILITIES_API HRESULT GetDeviceContextPixels(std::int32_t context,
                                                    DeviceContextPixels* pixels) noexcept;
/// Writes an image context (E_INVALIDARG for any other) as a PNG file, replacing an existing one.
GENERALUTILITIES_API HRESULT WriteDeviceContextPng(std::int32_t context,
                                                   const char16_t* path) noexcept;

/// Ends a context and its handle, whatever it answers; E_FAIL when its file could not be written.
GENERALUTILITIES_API HRESULT CloseDeviceContext(std::int32_t context) noexcept;

}  // extern "C"
}  // namespace generalutilities
