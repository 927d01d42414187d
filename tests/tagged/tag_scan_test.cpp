// Cutting texts into runs and tags, and font attributes that go.

#include <generalutilities/tagged/font_wrapping.h>

#include "random_tags.h"
#include "textbook.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

/// "text[tag]text", or the fault with its position.
std::u16string Cut(std::u16string_view text) {
    TagScan scan;
    if (const auto fault = ScanTags(text, scan)) {
        const std::string words = fault->Words() + std::to_string(fault->position);
        return std::u16string(words.begin(), words.end());
    }
    EXPECT_EQ(JoinTagScan(scan), text);
    std::u16string cut(scan.texts[0]);
    for (std::size_t i = 0; i < scan.tags.size(); ++i) {
        cut.append(u"[").append(scan.tags[i]).append(u"]").append(scan.texts[i + 1]);
    }
    return cut;
}

TEST(ScanTags, CutsAtTagsAndOpaqueElements) {
    const struct {
        const char16_t* text;
        const char16_t* cut;
    } cases[] = {
        {u"", u""},
        {u"a&lt;b>", u"a&lt;b>"},
        {u"one <ut>&lt;x&gt;</ut>two <df font=\"A\" a=\"1\">three</df>",
         u"one [<ut>&lt;x&gt;</ut>]two [<df font=\"A\" a=\"1\">]three[</df>]"},
        {u"<ut>a<b>c</ut>", u"[<ut>a<b>c</ut>]"},
        {u"<UT a>x</Ut >y", u"[<UT a>x</Ut >]y"},
        {u"<ut></utter>", u"[<ut></utter>]"},
        {u"<utt></ut>", u"[<utt>][</ut>]"},
        {u"<a><b>", u"[<a>][<b>]"},
        {u"a<b", u"a<b"},
        {u"<a>b<\tc", u"[<a>]b<\tc"},
        {u"< x>", u"[< x>]"},
        {u"<>", u"[<>]"},
        {u"<df a=\"1>2\">", u"[<df a=\"1>]2\">"},
        {u"a < b", u"tag opened, but never closed2"},
        {u"a<ut>b<ut>", u"<ut> tag opened that is never closed1"},
        {u"a<ut></ut", u"tag opened, but never closed1"},
        {u"<u\u0442></ut>", u"[<u\u0442>][</ut>]"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(Cut(row.text), row.cut);
    }
}

TEST(StripFontAttributes, TidiesWhatIsLeft) {
    const struct {
        const char16_t* text;
        const char16_t* result;
    } cases[] = {
        {u"<df font=\"A\">x</df>", u"x"},
        {u"<df a=\"1\" font=\"A\">x</df>", u"<df a=\"1\">x</df>"},
        {u"<df a=\"1\" font=\"A\">x</df><df font=\"B\" a=\"1\">y</df>", u"<df a=\"1\">xy</df>"},
        {u"<df a=\"1\">x</df><df a=\"1\">y</df>", u"<df a=\"1\">x</df><df a=\"1\">y</df>"},
        {u"<df font=\"A\"><df a=\"1\">x</df></df>", u"<df a=\"1\">x</df>"},
        {u"<df a=\"1\">x</df><df font=\"B\"></df><df font=\"C\" a=\"1\">y</df>",
         u"<df a=\"1\">xy</df>"},
        {u"<df a=\"1\">x</df>,<df font=\"C\" a=\"1\">y</df>",
         u"<df a=\"1\">x</df>,<df a=\"1\">y</df>"},
        {u"<df b=\"\" a=\"1\">x</df><DF FontSize=\"8\" a=\"1\" b=\"\" b=\"\">y</DF>",
         u"<df b=\"\" a=\"1\">xy</DF>"},
        {u"</df><df font=\"A\">x</df></df><df>y</df>", u"</df>x</df><df>y</df>"},
        {u"<df a=\"1\">x</df></df><df font=\"A\" a=\"1\">y</df>",
         u"<df a=\"1\">x</df></df><df a=\"1\">y</df>"},
        {u"<ut><df font=\"A\"></ut>", u"<ut><df font=\"A\"></ut>"},
        {u"<ut><df font=\"A\">x</df>", u"<ut><df font=\"A\">x</df>"},
        {u"<b <df font=\"A\">x</dfy z>", u"<b xz>"},
        {u"<df font=\"A\">x<df font=\"B\"", u"x<df font=\"B\""},
        {u"<df font=\"A\" a=\"1>2\">x</df>", u"2\">x"},
        {u"<dffont=\"A\">x<dfx font=\"B\">y</df></df>", u"x<dfx font=\"B\">y</df>"},
        {u"<df  a = \"1\"font='A' b=\"2\" c=\"", u"<df  a = \"1\"font='A' b=\"2\" c=\""},
        {u"<df a = \"1\"font=\"A\"  c=\">x", u"<df a = \"1\">x"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(StripFontAttributes(row.text), row.result);
    }
}

TEST(StripFontAttributes, AndScanAreTheTextbooks) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    for (int i = 0; i < 20000; ++i) {
        const std::u16string text = RandomTags(
            random,
            {u"<df font=\"A\" a=\"1\">", u"<df a=\"1\">", u"<df fonts=\"\">", u"</df>", u"</df>",
             u"<", u">", u" ", u"<ut>", u"</uT", u"<df", u" Font=\"\"", u" b=\"2\"", u"<b>", u"x"},
            16);
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const std::u16string stripped = StripFontAttributes(text);
        ASSERT_EQ(stripped, textbook::StripFontAttributes(text)) << testing::PrintToString(text);
        ASSERT_EQ(StripFontAttributes(stripped), stripped) << testing::PrintToString(text);
        TagScan scan;
        textbook::Scan expected;
        const auto fault = ScanTags(text, scan);
        ASSERT_EQ(fault ? std::optional(fault->kind) : std::nullopt,
                  textbook::ScanTags(text, expected));
        ASSERT_TRUE(std::ranges::equal(scan.texts, expected.texts));
        ASSERT_TRUE(std::ranges::equal(scan.tags, expected.tags));
    }
}

/// Each would take minutes if a step of it looked at the rest of the text again.
TEST(HostileTags, TakeOnePass) {
    const auto repeat = [](std::u16string_view piece, int count) {
        std::u16string text;
        for (int i = 0; i < count; ++i) {
            text += piece;
        }
        return text;
    };
    const std::u16string opening = repeat(u"<df a=\"1\" font=\"A\">x", 200000);
    FontWrapper wrapper([](std::u16string_view character, std::uint32_t page) {
        return (character == u"x") == (page == 1);
    });
    wrapper.AddCodePage(1, u"F");
    wrapper.AddCodePage(2, u"G");
    for (const std::u16string& text :
         {std::u16string(1 << 20, u'<'), repeat(u"<ut>", 300000), repeat(u"<a>", 300000),
          repeat(u"< ", 500000), repeat(u"<ut x></ut>y", 100000), opening,
          opening + repeat(u"y</df>", 200000), repeat(u"</df>xy", 200000),
          repeat(u"<df a=\"1\">x</df><df a=\"1\" font=\"\">y</df>", 100000)}) {
        TagScan scan;
        const bool fails = ScanTags(text, scan).has_value();
        EXPECT_TRUE(fails || JoinTagScan(scan) == text);
        const std::u16string stripped = StripFontAttributes(text);
        EXPECT_EQ(StripFontAttributes(stripped), stripped);
        const std::u16string wrapped = wrapper.AddFonts(text);
        EXPECT_TRUE(fails ? wrapped == text : wrapped.size() >= stripped.size());
    }
}

}  // namespace
}  // namespace generalutilities
