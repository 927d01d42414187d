#pragma once

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <memory>
#include <pango/pangocairo.h>

/// Pango and Cairo, loaded when something is drawn for the first time: a client that never draws
/// does not pay for them and their thirty libraries.
namespace generalutilities {

/// The functions in use, under their own names.
#define GENERALUTILITIES_DRAWING_FUNCTIONS(each)                                                                      \
    each(cairo_append_path) each(cairo_clip) each(cairo_copy_path) each(cairo_create) each(                           \
        cairo_destroy) each(cairo_get_target) each(cairo_image_surface_create)                                        \
        each(cairo_image_surface_get_data) each(cairo_image_surface_get_height) each(                                 \
            cairo_image_surface_get_stride) each(cairo_image_surface_get_width) each(cairo_move_to)                   \
            each(cairo_new_path) each(cairo_paint) each(cairo_path_destroy) each(                                     \
                cairo_pdf_surface_create_for_stream) each(cairo_rectangle) each(cairo_reference)                      \
                each(cairo_restore) each(cairo_save) each(cairo_scale) each(                                          \
                    cairo_set_source_rgb) each(cairo_status) each(cairo_status_to_string)                             \
                    each(cairo_surface_destroy) each(cairo_surface_finish) each(                                      \
                        cairo_surface_flush) each(cairo_surface_get_type) each(cairo_surface_status)                  \
                        each(cairo_surface_write_to_png) each(cairo_svg_surface_create_for_stream) each(              \
                            g_object_unref) each(pango_attr_list_insert) each(pango_attr_list_new)                    \
                            each(pango_attr_list_unref) each(pango_attr_strikethrough_new) each(                      \
                                pango_attr_underline_new) each(pango_cairo_font_map_get_default)                      \
                                each(pango_cairo_show_layout_line) each(pango_cairo_update_context) each(             \
                                    pango_context_set_base_dir) each(pango_context_set_language)                      \
                                    each(pango_find_paragraph_boundary) each(                                         \
                                        pango_font_description_free) each(pango_font_description_new)                 \
                                        each(pango_font_description_set_absolute_size) each(                          \
                                            pango_font_description_set_family) each(pango_font_description_set_style) \
                                            each(pango_font_description_set_weight) each(                             \
                                                pango_font_map_create_context) each(pango_language_from_string)       \
                                                each(pango_layout_get_iter) each(                                     \
                                                    pango_layout_get_line_count) each(pango_layout_iter_free)         \
                                                    each(pango_layout_iter_get_baseline) each(                        \
                                                        pango_layout_iter_get_line_extents)                           \
                                                        each(pango_layout_iter_get_line_readonly) each(               \
                                                            pango_layout_iter_next_line)                              \
                                                            each(pango_layout_new) each(                              \
                                                                pango_layout_set_attributes)                          \
                                                                each(pango_layout_set_auto_dir) each(                 \
                                                                    pango_layout_set_font_description)                \
                                                                    each(pango_layout_set_tabs) each(                 \
                                                                        pango_layout_set_text)                        \
                                                                        each(pango_layout_set_width) each(            \
                                                                            pango_layout_set_wrap)                    \
                                                                            each(                                     \
                                                                                pango_tab_array_free)                 \
                                                                                each(                                 \
                                                                                    pango_tab_array_new)              \
                                                                                    each(                             \
                                                                                        pango_tab_array_set_tab)

struct DrawingLibrary {
// A declaration takes no parentheses: NOLINTNEXTLINE(bugprone-macro-parentheses)
#define GENERALUTILITIES_MEMBER(name) decltype(&::name) name;
    GENERALUTILITIES_DRAWING_FUNCTIONS(GENERALUTILITIES_MEMBER)
#undef GENERALUTILITIES_MEMBER
};

/// The functions, once loaded; null where the libraries are missing or too old.
const DrawingLibrary* OpenDrawingLibrary();

/// Owns what one of the functions frees.
template <auto Free>
struct Freed {
    template <class Object>
    void operator()(Object* object) const {
        (OpenDrawingLibrary()->*Free)(object);
    }
};
using FontDescription =
    std::unique_ptr<PangoFontDescription, Freed<&DrawingLibrary::pango_font_description_free>>;
using Attributes = std::unique_ptr<PangoAttrList, Freed<&DrawingLibrary::pango_attr_list_unref>>;
using TabArray = std::unique_ptr<PangoTabArray, Freed<&DrawingLibrary::pango_tab_array_free>>;
using LayoutIter = std::unique_ptr<PangoLayoutIter, Freed<&DrawingLibrary::pango_layout_iter_free>>;
using CairoContext = std::unique_ptr<cairo_t, Freed<&DrawingLibrary::cairo_destroy>>;
using CairoSurface =
    std::unique_ptr<cairo_surface_t, Freed<&DrawingLibrary::cairo_surface_destroy>>;
using CairoPath = std::unique_ptr<cairo_path_t, Freed<&DrawingLibrary::cairo_path_destroy>>;
template <class Object>
using GObjectPointer = std::unique_ptr<Object, Freed<&DrawingLibrary::g_object_unref>>;

}  // namespace generalutilities
