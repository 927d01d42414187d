// Drawing and measuring through UDrawText beside bare Pango calls, which get their text in UTF-8
// and keep one layout.

#include <generalutilities/automation/device_context.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/draw_text.h>

#include "check.h"
#include "platform/files/utf8.h"
#include "ratios.h"
#include "sample_texts.h"

#include <pango/pangocairo.h>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

constexpr int Width = 500;
constexpr int Height = 300;

/// Our way and the bare one, each with a picture.
struct Drawing {
    Drawing() {
        Check(CreateImageDeviceContext(Width, Height, &context) == S_OK, "no picture");
        const LOGFONT font{-16, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "DejaVu Sans"};
        SelectDeviceContextFont(context, &font);
        Check(CoCreateInstance(CLSID_UDrawText, nullptr, CLSCTX_INPROC_SERVER, IID_IUDrawText,
                               drawer.OutVoid()) == S_OK,
              "no UDrawText");
        description = pango_font_description_from_string("DejaVu Sans, sans-serif");
        pango_font_description_set_absolute_size(description, 16 * PANGO_SCALE);
        layout = pango_cairo_create_layout(cairo);
        pango_layout_set_font_description(layout, description);
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }

    std::int32_t context = 0;
    ComPtr<IUDrawText> drawer;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, Width, Height);
    cairo_t* cairo = cairo_create(surface);
    PangoFontDescription* description = nullptr;
    PangoLayout* layout = nullptr;
};

int BareHeight(Drawing& with, const std::string& text, int width) {
    int height = 0;
    pango_layout_set_width(with.layout, width * PANGO_SCALE);
    pango_layout_set_text(with.layout, text.data(), static_cast<int>(text.size()));
    pango_layout_get_pixel_size(with.layout, nullptr, &height);
    return height;
}

void RegisterText(Drawing& with, const std::string& name, const std::u16string& units,
                  std::vector<Goal>& goals) {
    const auto text = std::make_shared<Bstr>(units);
    const std::string bytes = files::ToUtf8Lossy(units);
    std::int32_t height = 0;
    with.drawer->GetTextHeight(with.context, text->Get(), Width, &height);
    const int bare = BareHeight(with, bytes, Width);
    Check(std::abs(height - bare) <= 24 + bare / 100, "two heights differ");

    RegisterBenchmark(("height, " + name + "/ours").c_str(), [&with, text](State& state) {
        std::int32_t out = 0;
        for (auto _ : state) {
            with.drawer->GetTextHeight(with.context, text->Get(), Width, &out);
        }
    });
    RegisterBenchmark(("height, " + name + "/peer").c_str(), [&with, bytes](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(BareHeight(with, bytes, Width));
        }
    });
    RegisterBenchmark(("width, " + name + "/ours").c_str(), [&with, text](State& state) {
        std::int32_t out = 0;
        for (auto _ : state) {
            with.drawer->GetTextWidth(with.context, text->Get(), &out);
        }
    });
    RegisterBenchmark(("width, " + name + "/peer").c_str(), [&with, bytes](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(BareHeight(with, bytes, 32767));
        }
    });
    RegisterBenchmark(("draw, " + name + "/ours").c_str(), [&with, text](State& state) {
        tagRECT bounds{0, 0, Width, Height};
        for (auto _ : state) {
            with.drawer->DrawText(with.context, text->Get(), &bounds);
        }
    });
    RegisterBenchmark(("draw, " + name + "/peer").c_str(), [&with, bytes](State& state) {
        for (auto _ : state) {
            pango_layout_set_width(with.layout, Width * PANGO_SCALE);
            pango_layout_set_text(with.layout, bytes.data(), static_cast<int>(bytes.size()));
            cairo_set_source_rgb(with.cairo, 0, 0, 0);
            cairo_move_to(with.cairo, 0, 0);
            pango_cairo_show_layout(with.cairo, with.layout);
        }
    });
    for (const char* const work : {"height, ", "width, ", "draw, "}) {
        goals.push_back({"draw", work + name, 1 / 1.2});
    }
}

std::vector<Goal> RegisterAll(Drawing& with) {
    std::vector<Goal> goals;
    for (const auto& [size, words] : {std::pair<std::size_t, const char*>{32, "32 units, "},
                                      {400, "400 units, "},
                                      {10000, "10,000 units, "}}) {
        for (const Sample& sample : Samples(size)) {
            RegisterText(with, words + sample.name, sample.text, goals);
        }
    }
    return goals;
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    generalutilities::bench::Drawing with;
    const auto goals = generalutilities::bench::RegisterAll(with);
    return generalutilities::bench::Run(argc, argv, goals);
}
