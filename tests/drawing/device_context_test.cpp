// Device contexts: handles, surfaces and files, and what a caller's own Cairo context keeps.

#include "database/temporary_folder.h"
#include "picture.h"

#include <cairo.h>
#include <filesystem>

namespace generalutilities {
namespace {

TEST(DeviceContextTest, AHandleStandsForAContextWhileItIsOpen) {
    std::int32_t first = 0, second = 0;
    ASSERT_EQ(CreateImageDeviceContext(1, 32767, &first), S_OK);
    LOGFONT font{};
    COLORREF color = 1;
    EXPECT_EQ(GetDeviceContextFont(first, &font), S_OK);
    EXPECT_EQ(font.lfHeight, -16);
    EXPECT_EQ(GetDeviceContextTextColor(first, &color), S_OK);
    EXPECT_EQ(color, 0u);
    // Whoever releases the handle of a context leaves it open, and its number to others.
    ReleaseHandle(first);
    EXPECT_EQ(GetDeviceContextFont(first, &font), E_INVALIDARG);
    EXPECT_EQ(CloseDeviceContext(first), S_OK);
    ASSERT_EQ(CreateImageDeviceContext(5, 5, &second), S_OK);
    EXPECT_EQ(CloseDeviceContext(second), S_OK);

    const std::int32_t foreign = HandleFromPointer(&font);
    DeviceContextPixels pixels{};
    for (const std::int32_t handle : {0, -7, second, foreign}) {
        EXPECT_EQ(SelectDeviceContextFont(handle, &font), E_INVALIDARG);
        EXPECT_EQ(GetDeviceContextFont(handle, &font), E_INVALIDARG);
        EXPECT_EQ(SetDeviceContextTextColor(handle, 0), E_INVALIDARG);
        EXPECT_EQ(GetDeviceContextTextColor(handle, &color), E_INVALIDARG);
        EXPECT_EQ(FillDeviceContext(handle, 0), E_INVALIDARG);
        EXPECT_EQ(GetDeviceContextPixels(handle, &pixels), E_INVALIDARG);
        EXPECT_EQ(WriteDeviceContextPng(handle, u"x"), E_INVALIDARG);
        EXPECT_EQ(CloseDeviceContext(handle), E_INVALIDARG);
    }
    EXPECT_EQ(PointerFromHandle(foreign), &font);
    ReleaseHandle(foreign);
    for (const std::int32_t side : {0, -1, 32768}) {
        EXPECT_EQ(CreateImageDeviceContext(side, 1, &first), E_INVALIDARG);
    }
    EXPECT_EQ(CreateImageDeviceContext(1, 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(CreateCairoDeviceContext(nullptr, &first), E_INVALIDARG);
    EXPECT_EQ(CreatePdfDeviceContext(nullptr, 1, 1, &first), E_INVALIDARG);
}

TEST(DeviceContextTest, FilesAreCompleteOrAFailureSaysWhy) {
    const TemporaryFolder folder;
    const auto fails = [](HRESULT status) {
        ComPtr<IErrorInfo> error;
        Bstr words;
        return status == E_FAIL && GetErrorInfo(0, error.Out()) == S_OK &&
               error->GetDescription(words.Out()) == S_OK && !words.View().empty();
    };
    struct Kind {
        decltype(&CreatePdfDeviceContext) create;
        const char16_t* name;
        std::string_view head;
        std::string_view page;
    };
    const Picture drawer;
    for (const Kind& kind :
         {Kind{&CreatePdfDeviceContext, u"a.pdf", "%PDF-", "MediaBox [ 0 0 300 150 ]"},
          Kind{&CreateSvgDeviceContext, u"a.svg", "<?xml", "width=\"300pt\" height=\"150pt\""}}) {
        std::int32_t context = 0;
        ASSERT_EQ(kind.create(folder.Path(kind.name).c_str(), 400, 200, &context), S_OK);
        DeviceContextPixels pixels{};
        EXPECT_EQ(GetDeviceContextPixels(context, &pixels), E_INVALIDARG);
        EXPECT_EQ(WriteDeviceContextPng(context, u"x"), E_INVALIDARG);
        tagRECT bounds{0, 0, 400, 200};
        EXPECT_EQ(drawer.object->DrawText(context, Bstr(u"text").Get(), &bounds), S_OK);
        EXPECT_EQ(CloseDeviceContext(context), S_OK);
        const std::string bytes = ReadFile(std::filesystem::path(folder.Path(kind.name)).string());
        EXPECT_TRUE(bytes.starts_with(kind.head));
        EXPECT_NE(bytes.find(kind.page), std::string::npos) << bytes.substr(0, 400);

        EXPECT_TRUE(fails(kind.create(u"/nowhere/at/all", 9, 9, &context)));
        EXPECT_TRUE(fails(kind.create(u"", 9, 9, &context)));
        for (const char16_t* words : {u"", u"more bytes than a buffer holds"}) {
            ASSERT_EQ(kind.create(u"/dev/full", 400, 200, &context), S_OK);
            EXPECT_EQ(drawer.object->DrawText(context, Bstr(words).Get(), &bounds), S_OK);
            EXPECT_TRUE(fails(CloseDeviceContext(context))) << kind.head;
        }
    }
    EXPECT_EQ(WriteDeviceContextPng(drawer.context, folder.Path(u"a.png").c_str()), S_OK);
    EXPECT_TRUE(ReadFile(folder / "a.png").starts_with("\x89PNG"));
    EXPECT_TRUE(fails(WriteDeviceContextPng(drawer.context, u"/dev/full")));
    EXPECT_TRUE(fails(WriteDeviceContextPng(drawer.context, u"/nowhere/at/all")));
}

TEST(DeviceContextTest, ACallersCairoContextKeepsItsState) {
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 100, 100);
    cairo_t* const cairo = cairo_create(surface);
    cairo_set_source_rgb(cairo, 0, 1, 0);
    cairo_move_to(cairo, 7, 8);
    cairo_line_to(cairo, 9, 10);
    cairo_scale(cairo, 2, 2);
    std::int32_t context = 0;
    ASSERT_EQ(CreateCairoDeviceContext(cairo, &context), S_OK);
    EXPECT_EQ(cairo_get_reference_count(cairo), 2u);
    const Picture drawer;
    tagRECT bounds{0, 20, 50, 50};
    EXPECT_EQ(drawer.object->DrawText(context, Bstr(u"llllllll").Get(), &bounds), S_OK);
    double x = 0, y = 0;
    cairo_get_current_point(cairo, &x, &y);
    EXPECT_EQ(x, 4.5);
    EXPECT_EQ(y, 5);
    const auto* const row = reinterpret_cast<const std::uint32_t*>(
        cairo_image_surface_get_data(surface) + 55 * cairo_image_surface_get_stride(surface));
    EXPECT_NE(std::count(row, row + 100, 0u), 100) << "nothing at twice the height";
    const auto* const above =
        reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface));
    EXPECT_EQ(std::count(above, above + 39 * 100, 0u), 39 * 100);
    EXPECT_EQ(CloseDeviceContext(context), S_OK);
    EXPECT_EQ(cairo_get_reference_count(cairo), 1u);
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
}

}  // namespace
}  // namespace generalutilities
