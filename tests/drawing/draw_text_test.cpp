// Drawing and measuring, through the component. Pictures are looked at with tolerance: where there
// is ink and where none, never which pixel.

#include "case_table.h"
#include "drawing/text_host_impl.h"
#include "picture.h"
#include "platform/files/utf8.h"

#include <limits>
#include <pango/pangocairo.h>
#include <random>

namespace generalutilities {
namespace {

constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();

TEST(DrawTextTest, InkIsWhereItShouldBe) {
    constexpr tagRECT Bounds{50, 40, 250, 120};
    for (const auto& row : CaseTable("pictures.tsv")) {
        SCOPED_TRACE(files::ToUtf8Lossy(row[0]));
        Picture picture;
        picture.Select(Font(Number(row[1])));
        picture.Draw(row[0], Bounds);
        const Ink ink = picture.Look();
        EXPECT_GE(ink.left, Bounds.left);
        EXPECT_GE(ink.top, Bounds.top);
        EXPECT_LE(ink.right, Bounds.right);
        EXPECT_LE(ink.bottom, Bounds.bottom);
        const std::u16string& side = row[2];
        EXPECT_EQ(ink.left < Bounds.left + 15, side == u"left" || side == u"both");
        EXPECT_EQ(ink.right > Bounds.right - 15, side == u"right" || side == u"both");
        const std::int32_t line = picture.Height(u"x", 1000);
        // Fonts of other scripts have higher lines.
        const std::int32_t lines = (picture.Height(row[0], 200) + line / 2) / line;
        EXPECT_GE(lines, Number(row[3]));
        EXPECT_LE(lines, Number(row[3]) * 3 / 2);
    }
}

TEST(DrawTextTest, TheFontAndTheColourOfTheContextCount) {
    const auto inkOf = [](LOGFONT font, COLORREF color = 0) {
        Picture picture;
        picture.Select(font);
        SetDeviceContextTextColor(picture.context, color);
        picture.Draw(u"Lorem ill", {20, 20, 280, 180});
        const std::int32_t width = picture.Width(u"Lorem ill");
        SetDeviceContextTextColor(picture.context, ~color);
        EXPECT_EQ(picture.Width(u"Lorem ill"), width);
        return picture.Look();
    };
    const auto with = [](auto change) {
        LOGFONT font = Font(-30);
        change(font);
        return font;
    };
    const Ink plain = inkOf(Font(-30));
    EXPECT_EQ(plain.red, 0);
    EXPECT_GT(inkOf(Font(-30), 0x0000FF).red, plain.amount / 2);
    EXPECT_GT(inkOf(with([](LOGFONT& f) { f.lfWeight = 700; })).amount, plain.amount * 11 / 10);
    EXPECT_EQ(inkOf(with([](LOGFONT& f) { f.lfWeight = 699; })).amount, plain.amount);
    EXPECT_NE(inkOf(with([](LOGFONT& f) { f.lfItalic = 1; })).amount, plain.amount);
    EXPECT_GT(inkOf(with([](LOGFONT& f) { f.lfUnderline = 9; })).bottom, plain.bottom);
    EXPECT_GT(inkOf(with([](LOGFONT& f) { f.lfStrikeOut = 1; })).amount, plain.amount * 21 / 20);
    EXPECT_EQ(inkOf(Font(30)).amount, plain.amount);
    EXPECT_GT(inkOf(Font(-60)).bottom, plain.bottom + 15);
    EXPECT_EQ(inkOf(Font(0)).amount, inkOf(Font(16)).amount);
    // The name of no family, also one without an end: another family, fixed where that is wanted.
    LOGFONT missing = Font(-30, "No Such Family \x80\xFF,,,No Such Family");
    EXPECT_GT(inkOf(missing).amount, 0);
    missing.lfPitchAndFamily = 1;
    Picture picture;
    picture.Select(missing);
    EXPECT_EQ(picture.Width(u"iiii"), picture.Width(u"MMMM"));
}

TEST(DrawTextTest, WhatCannotBeDoneIsLeftUndone) {
    Picture picture, other;
    std::int32_t closed = 0;
    ASSERT_EQ(CreateImageDeviceContext(10, 10, &closed), S_OK);
    EXPECT_EQ(CloseDeviceContext(closed), S_OK);
    const std::int32_t foreign = HandleFromPointer(&picture);
    const Bstr text(u"text");
    tagRECT bounds{0, 0, 300, 200};
    for (const std::int32_t handle : {0, -1, Most, Least, closed, foreign}) {
        EXPECT_EQ(picture.object->DrawText(handle, text.Get(), &bounds), S_OK);
        std::int32_t width = -1, height = -1;
        EXPECT_EQ(picture.object->GetTextWidth(handle, text.Get(), &width), S_OK);
        EXPECT_EQ(picture.object->GetTextHeight(handle, text.Get(), 100, &height), S_OK);
        EXPECT_EQ(width, other.Width(u"text"));
        EXPECT_EQ(height, other.Height(u"text", 100));
    }
    ReleaseHandle(foreign);
    for (const tagRECT& nothing : {tagRECT{}, tagRECT{10, 10, 10, 90}, tagRECT{10, 90, 90, 10},
                                   tagRECT{90, 10, 10, 90}, tagRECT{Most, Most, Least, Least},
                                   tagRECT{Least, Least, -1, -1}, tagRECT{300, 0, Most, Most}}) {
        picture.Draw(u"text", nothing);
    }
    EXPECT_EQ(picture.object->DrawText(picture.context, text.Get(), nullptr), S_OK);
    EXPECT_EQ(picture.object->DrawText(picture.context, nullptr, &bounds), S_OK);
    EXPECT_EQ(picture.object->GetTextWidth(picture.context, text.Get(), nullptr), S_OK);
    EXPECT_EQ(picture.object->GetTextHeight(picture.context, nullptr, 1, nullptr), S_OK);
    EXPECT_EQ(picture.Look().amount, 0);
    EXPECT_EQ(picture.Width(u""), 0);
    EXPECT_EQ(picture.Height(u"", 10), picture.Height(u"x", 100));
    EXPECT_EQ(picture.Width(std::u16string_view(u"ab\0cd", 5)), picture.Width(u"ab"));
    EXPECT_EQ(picture.Height(u"abc", Least), picture.Height(u"a\nb\nc", Most));
    for (const std::int32_t height : {Least, Most, 1}) {
        picture.Select(Font(height));
        EXPECT_GE(picture.Width(u"text"), 1);
        picture.Draw(u"text", {Least, Least, Most, Most});
    }
    // Ten million bytes, of which a few lines are drawn.
    picture.Select(Font(16));
    std::u16string endless(5'000'000, u'x');
    for (const char16_t unit : {u'x', u'\n', u'\u0301', u'\u200B', char16_t{0xD800}}) {
        std::fill(endless.begin() + 1, endless.end(), unit);
        picture.Draw(endless, {0, 0, 300, 200});
    }
    EXPECT_GT(picture.Look().amount, 0);
}

/// Pango's own answer for the whole text at once, in pixels.
SIZE Reference(const std::u16string& text, std::int32_t width) {
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1);
    cairo_t* const cairo = cairo_create(surface);
    PangoLayout* const layout = pango_cairo_create_layout(cairo);
    PangoFontDescription* const font =
        pango_font_description_from_string("DejaVu Sans, sans-serif");
    pango_font_description_set_absolute_size(font, 16 * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    pango_layout_set_width(layout, width * PANGO_SCALE);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout, files::ToUtf8Lossy(text).c_str(), -1);
    SIZE size{};
    pango_layout_get_size(layout, nullptr, &size.cy);
    size.cy = PANGO_PIXELS_CEIL(size.cy);
    for (GSList* line = pango_layout_get_lines_readonly(layout); line != nullptr;
         line = line->next) {
        PangoRectangle box;
        pango_layout_line_get_extents(static_cast<PangoLayoutLine*>(line->data), nullptr, &box);
        size.cx = std::max(size.cx, PANGO_PIXELS_CEIL(box.width));
    }
    pango_font_description_free(font);
    g_object_unref(layout);
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
    return size;
}

TEST(DrawTextTest, MeasuresAreThoseOfTheWholeTextAtOnce) {
    // Line ends first, then Latin words, then other scripts.
    const std::u16string_view words[] = {u"\n",
                                         u"\r\n",
                                         u"\u2029",
                                         u"\u2028",
                                         u"word",
                                         u" ",
                                         u" ",
                                         u"e\u0301",
                                         u"123-456",
                                         u"a/b",
                                         u"(",
                                         u"\u200B",
                                         u"incomprehensible",
                                         u"\u05E9\u05DC\u05D5\u05DD",
                                         u"\u4E2D\u6587",
                                         u"\u3002"};
    const std::uint32_t seed = std::random_device{}();
    std::mt19937 random(seed);
    Picture picture;
    picture.Select(Font(-16));
    for (int round = 0; round < 120; ++round) {
        std::u16string text;
        for (std::size_t left = random() % 900; left > 0; --left) {
            // Few line ends: paragraphs are longer than what is laid out at once.
            const std::size_t first = random() % 50 == 0 ? 0 : 4;
            const std::size_t last = round % 2 == 0 ? 13 : std::size(words);
            text += words[first + random() % (last - first)];
        }
        const auto width = static_cast<std::int32_t>(60 + random() % 600);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round) +
                     ", width " + std::to_string(width) + ": " + files::ToUtf8Lossy(text));
        const SIZE wrapped = Reference(text, width);
        // A piece knows little of what surrounds it, so a seam may break a line elsewhere.
        ASSERT_NEAR(picture.Height(text, width), wrapped.cy, 24 + wrapped.cy / 100);
        const SIZE whole = Reference(text, 32767);
        ASSERT_NEAR(picture.Width(text), whole.cx, round % 2 == 0 ? 0 : 40);
        ASSERT_NEAR(picture.Height(text, picture.Width(text)), whole.cy, 1);
    }
}

TEST(DrawTextTest, TheHostAnswersItsServices) {
    struct Host : ITextHostImpl {
        HRESULT QueryInterface(REFIID, void**) noexcept override { return E_NOINTERFACE; }
        std::uint32_t AddRef() noexcept override { return 1; }
        std::uint32_t Release() noexcept override { return 1; }
    } host;
    std::uint32_t number = 0;
    for (const std::uint32_t mask : {0U, 1U, ~0U}) {
        EXPECT_EQ(host.TxGetPropertyBits(mask, &number), S_OK);
        EXPECT_EQ(number, 0x200CC3u);
    }
    TXTBACKSTYLE style = TXTBACK_OPAQUE;
    EXPECT_EQ(host.TxGetBackStyle(&style), S_OK);
    EXPECT_EQ(style, TXTBACK_TRANSPARENT);
    EXPECT_EQ(host.TxGetMaxLength(&number), S_OK);
    EXPECT_EQ(number, 0xFFFFFFFFu);
    std::int32_t position = 0;
    EXPECT_EQ(host.TxGetAcceleratorPos(&position), S_OK);
    EXPECT_EQ(position, -1);
    EXPECT_EQ(host.TxReleaseDC(0), 1);
    EXPECT_EQ(host.TxGetPasswordChar(nullptr), S_FALSE);
    EXPECT_EQ(host.TxGetExtent(nullptr), E_NOTIMPL);
    const PARAFORMAT2* paragraphs = nullptr;
    EXPECT_EQ(host.TxGetParaFormat(&paragraphs), S_OK);
    EXPECT_EQ(paragraphs->cbSize, 188u);
    EXPECT_EQ(paragraphs->dwMask, 0x8001003F);
    EXPECT_EQ(paragraphs->wAlignment, 1);
    EXPECT_EQ(paragraphs->rgxTabs[0], 720);
    // A change of the services' own is kept, as far as they say that it goes.
    CHARFORMAT2W change = FontFormat(Font(-32, "\x80 a face name that has no end at all"));
    EXPECT_EQ(change.yHeight, 480);
    EXPECT_EQ(change.szFaceName[0], u'\u20AC');
    EXPECT_EQ(change.szFaceName[31], u't');
    change.cbSize = 20;
    EXPECT_EQ(host.OnTxCharFormatChange(&change), S_OK);
    const CHARFORMAT2W* characters = nullptr;
    EXPECT_EQ(host.TxGetCharFormat(&characters), S_OK);
    EXPECT_EQ(characters->yHeight, 480);
    EXPECT_EQ(characters->szFaceName[0], u's');
    EXPECT_EQ(characters->dwMask, 0xFC08803F);
    EXPECT_EQ(characters->dwEffects, 0x04000000u);
}

}  // namespace
}  // namespace generalutilities
