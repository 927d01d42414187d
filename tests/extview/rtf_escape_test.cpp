#include "extview/rtf_escape.h"

#include "platform/cpu.h"

#include <gtest/gtest.h>
#include <string>

namespace generalutilities::rtf {
namespace {

std::u16string Escape(std::u16string_view text) {
    std::u16string output;
    AppendEscaped(output, text);
    return output;
}

TEST(RtfEscape, Texts) {
    struct {
        const char16_t* text;
        const char16_t* expected;
    } const cases[] = {
        {u"", u""},
        {u"{12}", u"\\{12\\}"},
        {u"a\\b", u"a\\\\b"},
        {u"a\rb", u"a\\par b"},
        {u"a\r\nb", u"a\\par b"},
        {u"a\nb", u"a\\par b"},
        {u"a\n\rb", u"a\\par\\par b"},  // only CR LF is one line end
        {u"a\r\r\nb", u"a\\par\\par b"},
        {u"a\n{b", u"a\\par\\{b"},        // no blank in front of what is no letter
        {u"a\n\n b", u"a\\par\\par  b"},  // a blank of the text needs one in front, too
        {u"a\tb\t\tc", u"a\\tab b\\tab\\tab c"},
        {u"\n\u00E9x", u"\\par\\uc0\\u233 x"},
        {u"\n\1x", u"\\par\\'01x"},
        {u"line\n", u"line\\par"},
        {u"\u00E9", u"\\uc0\\u233 "},
        {u"\u05D0\u05D1", u"\\uc0\\u1488 \\uc0\\u1489 "},
        {u"\U0001F600", u"\\uc0\\u55357 \\uc0\\u56832 "},
        {u"\uFFFF", u"\\uc0\\u65535 "},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(Escape(text), expected) << testing::PrintToString(text);
    }
}

TEST(RtfEscape, EachAsciiUnit) {
    for (char16_t unit = 0; unit < 0x80; ++unit) {
        std::u16string expected(1, unit);
        if (unit == u'\r' || unit == u'\n') {
            expected = u"\\par";
        } else if (unit == u'\t') {
            expected = u"\\tab";
        } else if (unit == u'{' || unit == u'}' || unit == u'\\') {
            expected = std::u16string(u"\\") + unit;
        } else if (unit < 0x20) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\'%02X", static_cast<unsigned>(unit));
            expected = std::u16string(hex, hex + 4);
        }
        EXPECT_EQ(Escape(std::u16string(1, unit)), expected) << static_cast<int>(unit);
    }
    EXPECT_EQ(Escape(u"\x80"), u"\\uc0\\u128 ");
}

TEST(RtfEscape, FindsTheSamePlainRunByBlocksAsUnitByUnit) {
    if (!HasAvx2()) {
        GTEST_SKIP() << "no processor for the vector form";
    }
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        std::u16string text(50, u'~');
        text[unit % 50] = static_cast<char16_t>(unit);
        ASSERT_EQ(PlainRunByBlocks(text), PlainRunUnitByUnit(text)) << std::hex << unit;
    }
}

/// What is escaped goes through a buffer of limited size.
TEST(RtfEscape, EscapesALongTextAsItsParts) {
    std::u16string text;
    std::u16string expected;
    for (int i = 0; i < 300; ++i) {
        text += u"\u5B57\r\n";
        expected += u"\\uc0\\u23383 \\par";
    }
    EXPECT_EQ(Escape(text), expected);
}

}  // namespace
}  // namespace generalutilities::rtf
