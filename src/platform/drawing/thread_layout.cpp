#include "platform/drawing/thread_layout.h"

namespace generalutilities {
namespace {

ThreadLayout Make(const DrawingLibrary& library) {
    ThreadLayout made;
    PangoFontMap* const fonts = library.pango_cairo_font_map_get_default();
    const CairoSurface pixel(library.cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1));
    made.screen.reset(library.cairo_create(pixel.get()));
    made.context.reset(library.pango_font_map_create_context(fonts));
    made.layout.reset(library.pango_layout_new(made.context.get()));
    library.pango_layout_set_wrap(made.layout.get(), PANGO_WRAP_WORD_CHAR);
    return made;
}

}  // namespace

ThreadLayout& LayoutOfThread(const DrawingLibrary& library) {
    thread_local ThreadLayout ours = Make(library);
    return ours;
}

}  // namespace generalutilities
