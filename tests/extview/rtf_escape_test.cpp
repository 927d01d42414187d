#include "extview/rtf_escape.h"

#include "case_table.h"
#include "platform/cpu.h"

namespace generalutilities::rtf {
namespace {

std::u16string Escape(std::u16string_view text) {
    std::u16string output;
    AppendEscaped(output, text);
    return output;
}

TEST(RtfEscape, Texts) {
    for (const auto& row : CaseTable("rtf_escapes.tsv")) {
        EXPECT_EQ(Escape(row[0]), row[1]);
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
