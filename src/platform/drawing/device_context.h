#pragma once

#include <generalutilities/automation/device_context.h>

#include <memory>
#include <string>
#include <string_view>

namespace generalutilities {

/// What a context without a selected font has, and what stands in for the font of no context.
inline constexpr LOGFONT StockFont{-16, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "sans-serif"};

/// A surface, the font that is selected for it, and the colour of its text.
class DeviceContext {
  public:
    /// The Cairo side, known to this folder alone (cairo_target.h).
    struct Target;

    /// What came of a piece of work: a status, and for E_FAIL the reason in words.
    struct Outcome {
        HRESULT status = S_OK;
        std::string words = {};
    };

    explicit DeviceContext(std::unique_ptr<Target> over);
    ~DeviceContext();
    DeviceContext(const DeviceContext&) = delete;
    DeviceContext& operator=(const DeviceContext&) = delete;

    /// Each makes a context, or says why there is none. Sizes are in device units.
    static std::unique_ptr<DeviceContext> OverImage(int width, int height, Outcome& outcome);
    static std::unique_ptr<DeviceContext> OverPdf(const std::string& path, int width, int height,
                                                  Outcome& outcome);
    static std::unique_ptr<DeviceContext> OverSvg(const std::string& path, int width, int height,
                                                  Outcome& outcome);
    static std::unique_ptr<DeviceContext> OverCairo(void* cairo, Outcome& outcome);

    Outcome Fill(COLORREF color);
    /// Null pixels where the surface is no image.
    DeviceContextPixels Pixels();
    Outcome WritePng(const std::string& path);
    /// Completes the file of a PDF or SVG surface; nothing can be drawn afterwards.
    Outcome Finish();

    Target& Surface() { return *target; }

    LOGFONT font = StockFont;
    COLORREF textColor = 0;

  private:
    std::unique_ptr<Target> target;
};

}  // namespace generalutilities
