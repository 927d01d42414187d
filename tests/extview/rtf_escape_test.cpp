#include "extview/rtf_escape.h"

#include "case_table.h"
#include "platform/cpu.h"

namespace generalutilities::rtf {
namespace {

using Appending = void (*)(std::u16string&, std::u16string_view);

std::u16string Escape(std::u16string_view text, Appending append = AppendEscaped) {
    std::u16string output;
    append(output, text);
    return output;
}

TEST(RtfEscape, Texts) {
    for (const auto& row : CaseTable("rtf_escapes.tsv")) {
        EXPECT_EQ(Escape(row[0]), row[1]);
    }
    for (const auto& row : CaseTable("segment_escapes.tsv")) {
        EXPECT_EQ(Escape(row[0], AppendSegment), row[1]);
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
    text.assign(1000, u'\\');  // an even number: the brace behind them is none of theirs
    expected.assign(2000, u'\\');
    const std::u16string digits(1000, u'7');
    EXPECT_EQ(Escape(text + u"{" + digits + u"}", AppendSegment),
              expected + u"{\\cs6\\f1\\cf6\\lang1024<c:" + digits + u">}");
}

}  // namespace
}  // namespace generalutilities::rtf
