#pragma once

#include "platform/drawing/drawing_library.h"

#include <cstdint>

namespace generalutilities {

/// The layout with which a thread lays out its texts. Pango's fonts belong to a thread, so whatever
/// stands on them is kept here and nothing of it in an object, which may be called by one thread
/// today and by another one tomorrow.
struct ThreadLayout {
    GObjectPointer<PangoContext> context;
    GObjectPointer<PangoLayout> layout;
    CairoContext screen;       ///< an image, for measuring without a device context
    std::uint64_t format = 0;  ///< the number of the format that is set in `layout`
};

/// The calling thread's.
ThreadLayout& LayoutOfThread(const DrawingLibrary& library);

}  // namespace generalutilities
