#pragma once

#include <generalutilities/automation/device_context.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/draw_text.h>

#include <string>

namespace generalutilities::fire {

/// The whole life of a picture and of the object that draws on it: the first failure. `answer`, if
/// there is one, gets the measures of the text and every pixel.
inline HRESULT LiveWithDrawing(BSTR text, std::u16string* answer = nullptr) {
    std::int32_t context = 0;
    HRESULT status = CreateImageDeviceContext(120, 60, &context);
    if (Failed(status)) {
        return status;
    }
    ComPtr<IUDrawText> drawer;
    tagRECT bounds{2, 2, 118, 58};
    std::int32_t width = 0, height = 0;
    DeviceContextPixels pixels{};
    const auto next = [&status](HRESULT done) { status = Failed(status) ? status : done; };
    for (const std::int32_t size : {12, 30}) {
        const LOGFONT font{size};
        next(SelectDeviceContextFont(context, &font));
        next(CoCreateInstance(CLSID_UDrawText, nullptr, CLSCTX_INPROC_SERVER, IID_IUDrawText,
                              drawer.OutVoid()));
        if (drawer) {
            next(drawer->DrawText(context, text, &bounds));
            next(drawer->GetTextWidth(context, text, &width));
            next(drawer->GetTextHeight(context, text, width / 3, &height));
        }
        next(GetDeviceContextPixels(context, &pixels));
        if (answer != nullptr) {
            answer->append({static_cast<char16_t>(width), static_cast<char16_t>(height)});
            answer->append(reinterpret_cast<const char16_t*>(pixels.first),
                           std::size_t{2} * 120 * 60);
        }
    }
    next(CloseDeviceContext(context));
    return status;
}

}  // namespace generalutilities::fire
