#pragma once

#include <generalutilities/automation/device_context.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/draw_text.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string_view>

namespace generalutilities {

/// Where a picture is not white.
struct Ink {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
    std::int32_t amount = 0;  ///< pixels
    std::int32_t red = 0;     ///< how many of them are more red than anything else
};

/// A white picture with an object that draws on it.
class Picture {
  public:
    explicit Picture(std::int32_t width = 300, std::int32_t height = 200) {
        EXPECT_EQ(CreateImageDeviceContext(width, height, &context), S_OK);
        EXPECT_EQ(FillDeviceContext(context, 0xFFFFFF), S_OK);
        EXPECT_EQ(CoCreateInstance(CLSID_UDrawText, nullptr, CLSCTX_INPROC_SERVER, IID_IUDrawText,
                                   object.OutVoid()),
                  S_OK);
    }
    ~Picture() { EXPECT_EQ(CloseDeviceContext(context), S_OK); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    void Select(const LOGFONT& font) { EXPECT_EQ(SelectDeviceContextFont(context, &font), S_OK); }
    void Draw(std::u16string_view text, tagRECT bounds) {
        EXPECT_EQ(object->DrawText(context, Bstr(text).Get(), &bounds), S_OK);
    }
    std::int32_t Width(std::u16string_view text) {
        std::int32_t width = -1;
        EXPECT_EQ(object->GetTextWidth(context, Bstr(text).Get(), &width), S_OK);
        return width;
    }
    std::int32_t Height(std::u16string_view text, std::int32_t width) {
        std::int32_t height = -1;
        EXPECT_EQ(object->GetTextHeight(context, Bstr(text).Get(), width, &height), S_OK);
        return height;
    }
    Ink Look() const {
        DeviceContextPixels pixels{};
        EXPECT_EQ(GetDeviceContextPixels(context, &pixels), S_OK);
        Ink ink{pixels.width, pixels.height};
        for (std::int32_t y = 0; y < pixels.height; ++y) {
            for (std::int32_t x = 0; x < pixels.width; ++x) {
                const std::uint32_t pixel = pixels.first[y * pixels.stride + x];
                if (pixel != 0xFFFFFFFF) {
                    ink = {std::min(ink.left, x),
                           std::min(ink.top, y),
                           std::max(ink.right, x + 1),
                           std::max(ink.bottom, y + 1),
                           ink.amount + 1,
                           ink.red + ((pixel & 0xFF0000) >> 16 > (pixel & 0xFF) ? 1 : 0)};
                }
            }
        }
        return ink;
    }

    ComPtr<IUDrawText> object;
    std::int32_t context = 0;
};

inline LOGFONT Font(std::int32_t height, std::string_view face = "DejaVu Sans") {
    LOGFONT font{};
    font.lfHeight = height;
    face.copy(font.lfFaceName, sizeof font.lfFaceName);
    return font;
}

}  // namespace generalutilities
