// Font tags round runs that leave the first code page.

#include <generalutilities/tagged/font_wrapping.h>

#include <gtest/gtest.h>
#include <map>

namespace generalutilities {
namespace {

int asked;

/// Page 1 carries small Latin letters and 3 and 4 capitals; 2 also "a" and U+1F600.
bool Carries(std::u16string_view character, std::uint32_t page) {
    ++asked;
    const char16_t unit = character[0];
    const bool isSmall = unit >= u'a' && unit <= u'z';
    const bool isCapital = unit >= u'A' && unit <= u'Z';
    return page == 1 ? isSmall
                     : isCapital || (page == 2 && (unit == u'a' || character == u"\U0001F600"));
}

class FontWrapping : public testing::Test {
  protected:
    FontWrapper wrapper{Carries};
};

TEST_F(FontWrapping, LeavesTextsAloneWithoutPagesOrWithBadTags) {
    EXPECT_EQ(wrapper.AddFonts(u"<df font=\"A\">X"), u"<df font=\"A\">X");
    wrapper.AddCodePage(1, u"F1");
    EXPECT_EQ(wrapper.AddFonts(u"<df font=\"A\">X</df>"), u"X");
    EXPECT_EQ(wrapper.AddFonts(u"<df font=\"A\">X</df><ut>"), u"<df font=\"A\">X</df><ut>");
    EXPECT_EQ(wrapper.AddFonts(u""), u"");
}

TEST_F(FontWrapping, WrapsRunsAndKeepsSpansNested) {
    wrapper.AddCodePage(1, u"F1");
    wrapper.AddCodePage(2, u"F2");
    const struct {
        const char16_t* text;
        const char16_t* result;
    } cases[] = {
        {u"ab", u"ab"},
        {u"abX", u"ab<df F2>X</df>"},
        {u"Xaa", u"<df F2>Xaa</df>"},
        {u"XbX", u"<df F2>X</df><df F1>b</df><df F2>X</df>"},
        {u"<df a=\"1\">X</df>a", u"<df a=\"1\"><df F2>X</df></df><df F2>a</df>"},
        {u"<b>X<i>", u"<b><df F2>X</df><i>"},
        {u"<ut>X</ut>b<ut>X</ut>", u"<ut>X</ut>b<ut>X</ut>"},
        {u"X<b>b", u"<df F2>X</df><b><df F1>b</df>"},
        {u"X<dF a=\"1\">a<df>ab</DF></df>b",
         u"<df F2>X<dF a=\"1\">a<df>a</df></df></df><dF a=\"1\"><df><df F1>b</DF></df><df F1></df>"
         u"</df><df F1>b</df>"},
        {u"<df><df>X</df a></df></df>X",
         u"<df><df><df F2>X</df a></df></df><df F2></df></df><df F2>X</df>"},
        {u"<df a=\"1\">X<df>b</df></df>c",
         u"<df a=\"1\"><df F2>X</df><df><df F1>b</df></df><df F1></df></df><df F1>c</df>"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(wrapper.AddFonts(row.text), row.result) << testing::PrintToString(row.text);
    }
}

TEST_F(FontWrapping, AsksOncePerUnitAndPage) {
    wrapper.AddCodePage(1, u"F1");
    wrapper.AddCodePage(2, u"F2");
    wrapper.AddCodePage(3, u"F3");
    asked = 0;
    EXPECT_EQ(wrapper.AddFonts(u"#b#A"), u"<df F3>#</df><df F1>b</df><df F3>#A</df>");
    EXPECT_EQ(asked, 3 + 2 + 1);  // "#" by all three, "b" by page 3 and 1, "A" by page 3
    wrapper.AddFonts(u"b#A#");
    EXPECT_EQ(asked, 6);
    // The first character with a high surrogate speaks for all of them, split by tags or not.
    EXPECT_EQ(wrapper.AddFonts(u"\xD83D<b>\xDE00"), u"<df F2>\xD83D<b>\xDE00</df>");
    EXPECT_EQ(wrapper.AddFonts(u"\xD83D"), u"<df F2>\xD83D</df>");
    wrapper.Reset();
    wrapper.AddCodePage(1, u"F1");
    wrapper.AddCodePage(2, u"F2");
    wrapper.AddCodePage(3, u"F3");
    EXPECT_EQ(wrapper.AddFonts(u"\xD83D"), u"<df F3>\xD83D</df>");
}

}  // namespace
}  // namespace generalutilities
