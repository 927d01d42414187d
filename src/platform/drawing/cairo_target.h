#pragma once

#include "platform/drawing/device_context.h"
#include "platform/drawing/drawing_library.h"

#include <cstdio>
#include <memory>

namespace generalutilities {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

struct DeviceContext::Target {
    const DrawingLibrary& library;
    File file;  ///< what a page is written to, until it has been finished; null without one
    CairoContext cairo;
    bool borrowed;  ///< the Cairo context is a caller's
};

inline void SetSource(const DrawingLibrary& library, cairo_t* cairo, COLORREF color) {
    const auto part = [color](int shift) { return ((color >> shift) & 0xFF) / 255.0; };
    library.cairo_set_source_rgb(cairo, part(0), part(8), part(16));
}

}  // namespace generalutilities
