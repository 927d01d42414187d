#include "platform/drawing/drawing_library.h"

#include <dlfcn.h>
#include <optional>

namespace generalutilities {
namespace {

std::optional<DrawingLibrary> Load() {
    // It brings the others along. It stays for the life of the process, as GLib must.
    void* const library = dlopen("libpangocairo-1.0.so.0", RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr) {
        return std::nullopt;
    }
    DrawingLibrary functions;
#define GENERALUTILITIES_LOOK_UP(name)                                                  \
    functions.name = reinterpret_cast<decltype(functions.name)>(dlsym(library, #name)); \
    if (functions.name == nullptr) {                                                    \
        return std::nullopt;                                                            \
    }
    GENERALUTILITIES_DRAWING_FUNCTIONS(GENERALUTILITIES_LOOK_UP)
#undef GENERALUTILITIES_LOOK_UP
    return functions;
}

}  // namespace

const DrawingLibrary* OpenDrawingLibrary() {
    static const std::optional<DrawingLibrary> library = Load();
    return library ? &*library : nullptr;
}

}  // namespace generalutilities
