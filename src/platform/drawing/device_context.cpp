#include "platform/drawing/device_context.h"

#include "platform/drawing/cairo_target.h"

#include <cerrno>
#include <cstring>

namespace generalutilities {
namespace {

using Outcome = DeviceContext::Outcome;

/// PDF and SVG pages are measured in points.
constexpr double PointsPerUnit = 72.0 / 96.0;

Outcome OutcomeOf(const DrawingLibrary& library, cairo_status_t status) {
    switch (status) {
        case CAIRO_STATUS_SUCCESS:
            return {};
        case CAIRO_STATUS_NO_MEMORY:
            return {E_OUTOFMEMORY};
        default:
            return {E_FAIL, library.cairo_status_to_string(status)};
    }
}

std::unique_ptr<DeviceContext> Over(const DrawingLibrary& library, File file, CairoContext cairo,
                                    bool borrowed, Outcome& outcome) {
    outcome = OutcomeOf(library, library.cairo_status(cairo.get()));
    if (Failed(outcome.status)) {
        return nullptr;
    }
    return std::make_unique<DeviceContext>(std::make_unique<DeviceContext::Target>(
        DeviceContext::Target{library, std::move(file), std::move(cairo), borrowed}));
}

/// Null, with the reason, where the libraries are missing.
const DrawingLibrary* Library(Outcome& outcome) {
    const DrawingLibrary* const library = OpenDrawingLibrary();
    if (library == nullptr) {
        outcome = {E_FAIL, "libpangocairo-1.0.so.0, version 1.50 or newer, cannot be loaded"};
    }
    return library;
}

cairo_status_t WriteTo(void* file, const unsigned char* bytes, unsigned int length) {
    return std::fwrite(bytes, 1, length, static_cast<std::FILE*>(file)) == length
               ? CAIRO_STATUS_SUCCESS
               : CAIRO_STATUS_WRITE_ERROR;
}

/// Cairo tells of a full disk on some surfaces and keeps silent on others, so a file is written by
/// our own stream.
std::unique_ptr<DeviceContext> OverPage(
    decltype(DrawingLibrary::cairo_pdf_surface_create_for_stream) DrawingLibrary::*create,
    const std::string& path, int width, int height, Outcome& outcome) {
    const DrawingLibrary* const library = Library(outcome);
    if (library == nullptr) {
        return nullptr;
    }
    File file(std::fopen(path.c_str(), "wbe"));
    if (file == nullptr) {
        outcome = {E_FAIL, std::strerror(errno)};
        return nullptr;
    }
    const CairoSurface surface(
        (library->*create)(WriteTo, file.get(), width * PointsPerUnit, height * PointsPerUnit));
    CairoContext cairo(library->cairo_create(surface.get()));
    library->cairo_scale(cairo.get(), PointsPerUnit, PointsPerUnit);
    return Over(*library, std::move(file), std::move(cairo), false, outcome);
}

}  // namespace

DeviceContext::DeviceContext(std::unique_ptr<Target> over) : target(std::move(over)) {}

DeviceContext::~DeviceContext() = default;

std::unique_ptr<DeviceContext> DeviceContext::OverImage(int width, int height, Outcome& outcome) {
    const DrawingLibrary* const library = Library(outcome);
    if (library == nullptr) {
        return nullptr;
    }
    const CairoSurface surface(
        library->cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    return Over(*library, nullptr, CairoContext(library->cairo_create(surface.get())), false,
                outcome);
}

std::unique_ptr<DeviceContext> DeviceContext::OverPdf(const std::string& path, int width,
                                                      int height, Outcome& outcome) {
    return OverPage(&DrawingLibrary::cairo_pdf_surface_create_for_stream, path, width, height,
                    outcome);
}

std::unique_ptr<DeviceContext> DeviceContext::OverSvg(const std::string& path, int width,
                                                      int height, Outcome& outcome) {
    return OverPage(&DrawingLibrary::cairo_svg_surface_create_for_stream, path, width, height,
                    outcome);
}

std::unique_ptr<DeviceContext> DeviceContext::OverCairo(void* cairo, Outcome& outcome) {
    const DrawingLibrary* const library = Library(outcome);
    if (library == nullptr) {
        return nullptr;
    }
    return Over(*library, nullptr,
                CairoContext(library->cairo_reference(static_cast<cairo_t*>(cairo))), true,
                outcome);
}

Outcome DeviceContext::Fill(COLORREF color) {
    const DrawingLibrary& library = target->library;
    cairo_t* const cairo = target->cairo.get();
    library.cairo_save(cairo);
    SetSource(library, cairo, color);
    library.cairo_paint(cairo);
    library.cairo_restore(cairo);
    return OutcomeOf(library, library.cairo_status(cairo));
}

DeviceContextPixels DeviceContext::Pixels() {
    const DrawingLibrary& library = target->library;
    cairo_surface_t* const surface = library.cairo_get_target(target->cairo.get());
    if (target->borrowed || library.cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) {
        return {};
    }
    library.cairo_surface_flush(surface);
    return {reinterpret_cast<const std::uint32_t*>(library.cairo_image_surface_get_data(surface)),
            library.cairo_image_surface_get_width(surface),
            library.cairo_image_surface_get_height(surface),
            library.cairo_image_surface_get_stride(surface) / 4};
}

Outcome DeviceContext::WritePng(const std::string& path) {
    if (Pixels().first == nullptr) {
        return {E_INVALIDARG};
    }
    const DrawingLibrary& library = target->library;
    return OutcomeOf(library, library.cairo_surface_write_to_png(
                                  library.cairo_get_target(target->cairo.get()), path.c_str()));
}

Outcome DeviceContext::Finish() {
    const DrawingLibrary& library = target->library;
    if (target->borrowed) {
        return {};
    }
    cairo_surface_t* const surface = library.cairo_get_target(target->cairo.get());
    library.cairo_surface_finish(surface);
    cairo_status_t status = library.cairo_surface_status(surface);
    if (target->file != nullptr) {
        const bool isWritten = std::ferror(target->file.get()) == 0;
        const bool isClosed = std::fclose(target->file.release()) == 0;
        if (status == CAIRO_STATUS_SUCCESS && !(isWritten && isClosed)) {
            status = CAIRO_STATUS_WRITE_ERROR;
        }
    }
    return OutcomeOf(library, status);
}

}  // namespace generalutilities
