// The exported functions of device contexts, and which handles stand for one: a number of the
// process-wide table says nothing about what it stands for.

#include "drawing/device_contexts.h"

#include "frame/error_reporting.h"
#include "frame/object.h"
#include "platform/files/files.h"
#include "platform/files/utf8.h"

#include <mutex>
#include <unordered_map>

namespace generalutilities {
namespace {

constexpr std::int32_t MaxImageSide = 32767;
constexpr std::int32_t MaxPageSide = 1'000'000;

struct OpenContexts {
    std::mutex mutex;
    std::unordered_map<std::int32_t, std::shared_ptr<DeviceContext>> byHandle;
};

OpenContexts& Open() {
    static OpenContexts contexts;
    return contexts;
}

bool IsSide(std::int32_t length, std::int32_t most) {
    return length >= 1 && length <= most;
}

/// A failure's words are left for the caller.
HRESULT Report(const DeviceContext::Outcome& outcome) {
    return outcome.status == E_FAIL
               ? ReportFailure(u"Cairo", files::FromUtf8(outcome.words).c_str(), GUID_NULL, E_FAIL)
               : outcome.status;
}

/// Makes a context by `make(outcome)` and enters it in both tables.
template <class Make>
HRESULT Create(std::int32_t* handle, const Make& make) {
    return Guarded([&] {
        DeviceContext::Outcome outcome;
        const std::shared_ptr<DeviceContext> context = make(outcome);
        if (context == nullptr) {
            return Report(outcome);
        }
        OpenContexts& open = Open();
        const std::lock_guard lock(open.mutex);
        const std::int32_t number = HandleFromPointer(context.get());
        if (number == 0) {
            return E_OUTOFMEMORY;
        }
        try {
            // A context whose handle was released by another function may still have the number.
            open.byHandle.insert_or_assign(number, context);
        } catch (...) {
            ReleaseHandle(number);
            throw;
        }
        *handle = number;
        return S_OK;
    });
}

template <class Make>
HRESULT CreateInFile(const char16_t* path, std::int32_t width, std::int32_t height,
                     std::int32_t* handle, const Make& make) {
    if (path == nullptr || handle == nullptr || !IsSide(width, MaxPageSide) ||
        !IsSide(height, MaxPageSide)) {
        return E_INVALIDARG;
    }
    return Create(handle, [&](DeviceContext::Outcome& outcome) {
        return make(files::ToNativePath(path), width, height, outcome);
    });
}

/// Runs `use(context)` with the open context behind a handle.
template <class Use>
HRESULT With(std::int32_t handle, const Use& use) {
    return Guarded([&] {
        const std::shared_ptr<DeviceContext> context = FindDeviceContext(handle);
        return context == nullptr ? E_INVALIDARG : use(*context);
    });
}

}  // namespace

std::shared_ptr<DeviceContext> FindDeviceContext(std::int32_t handle) {
    OpenContexts& open = Open();
    const std::lock_guard lock(open.mutex);
    const auto found = open.byHandle.find(handle);
    return found == open.byHandle.end() || PointerFromHandle(handle) != found->second.get()
               ? nullptr
               : found->second;
}

extern "C" {

HRESULT CreateImageDeviceContext(std::int32_t width, std::int32_t height,
                                 std::int32_t* context) noexcept {
    if (context == nullptr || !IsSide(width, MaxImageSide) || !IsSide(height, MaxImageSide)) {
        return E_INVALIDARG;
    }
    return Create(context, [=](DeviceContext::Outcome& outcome) {
        return DeviceContext::OverImage(width, height, outcome);
    });
}

HRESULT CreatePdfDeviceContext(const char16_t* path, std::int32_t width, std::int32_t height,
                               std::int32_t* context) noexcept {
    return CreateInFile(path, width, height, context, DeviceContext::OverPdf);
}

HRESULT CreateSvgDeviceContext(const char16_t* path, std::int32_t width, std::int32_t height,
                               std::int32_t* context) noexcept {
    return CreateInFile(path, width, height, context, DeviceContext::OverSvg);
}

HRESULT CreateCairoDeviceContext(void* cairo, std::int32_t* context) noexcept {
    if (cairo == nullptr || context == nullptr) {
        return E_INVALIDARG;
    }
    return Create(context, [=](DeviceContext::Outcome& outcome) {
        return DeviceContext::OverCairo(cairo, outcome);
    });
}

HRESULT SelectDeviceContextFont(std::int32_t context, const LOGFONT* font) noexcept {
    return font == nullptr ? E_INVALIDARG : With(context, [=](DeviceContext& found) {
        found.font = *font;
        return S_OK;
    });
}

HRESULT GetDeviceContextFont(std::int32_t context, LOGFONT* font) noexcept {
    return font == nullptr ? E_INVALIDARG : With(context, [=](const DeviceContext& found) {
        *font = found.font;
        return S_OK;
    });
}

HRESULT SetDeviceContextTextColor(std::int32_t context, COLORREF color) noexcept {
    return With(context, [=](DeviceContext& found) {
        found.textColor = color & 0xFFFFFF;
        return S_OK;
    });
}

HRESULT GetDeviceContextTextColor(std::int32_t context, COLORREF* color) noexcept {
    return color == nullptr ? E_INVALIDARG : With(context, [=](const DeviceContext& found) {
        *color = found.textColor;
        return S_OK;
    });
}

HRESULT FillDeviceContext(std::int32_t context, COLORREF color) noexcept {
    return With(context, [=](DeviceContext& found) { return Report(found.Fill(color)); });
}

HRESULT GetDeviceContextPixels(std::int32_t context, DeviceContextPixels* pixels) noexcept {
    return pixels == nullptr ? E_INVALIDARG : With(context, [=](DeviceContext& found) {
        *pixels = found.Pixels();
        return pixels->first == nullptr ? E_INVALIDARG : S_OK;
    });
}

HRESULT WriteDeviceContextPng(std::int32_t context, const char16_t* path) noexcept {
    return path == nullptr ? E_INVALIDARG : With(context, [=](DeviceContext& found) {
        return Report(found.WritePng(files::ToNativePath(path)));
    });
}

HRESULT CloseDeviceContext(std::int32_t context) noexcept {
    return Guarded([&] {
        std::shared_ptr<DeviceContext> closed;
        OpenContexts& open = Open();
        {
            const std::lock_guard lock(open.mutex);
            if (const auto found = open.byHandle.find(context); found != open.byHandle.end()) {
                closed = std::move(found->second);
                open.byHandle.erase(found);
            }
        }
        if (closed == nullptr) {
            return E_INVALIDARG;
        }
        if (PointerFromHandle(context) == closed.get()) {
            ReleaseHandle(context);
        }
        return Report(closed->Finish());
    });
}

}  // extern "C"
}  // namespace generalutilities
