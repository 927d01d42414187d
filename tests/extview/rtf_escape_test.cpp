#include "extview/rtf_escape.h"

#include "case_table.h"
#include "platform/cpu.h"
#include "seeded_random.h"

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

TEST(RtfEscape, FindsTheSameByBlocksAsUnitByUnit) {
    if (!HasAvx2()) {
        GTEST_SKIP() << "no processor for the vector form";
    }
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        std::u16string text(50, u'~');
        text[unit % 50] = static_cast<char16_t>(unit);
        ASSERT_EQ(PlainRunByBlocks(text), PlainRunUnitByUnit(text)) << std::hex << unit;
        ASSERT_EQ(FindEscapesByBlocks(text.data()), FindEscapesUnitByUnit(text.data()))
            << std::hex << unit;
    }
}

/// Blocks begin anywhere in a text and end anywhere.
TEST(RtfEscape, DoesNotDependOnThePlaceInATextOfBlocks) {
    SeededRandom random;
    constexpr std::u16string_view Units = u"\r\r\n\t{7}\\\x01\x7F\x80\u03B1\u0436\u5B57\uFFFD xyz";
    for (int round = 0; round < 200; ++round) {
        std::u16string text;
        for (std::size_t left = random() % 12; left > 0; --left) {
            text += Units[random() % Units.size()];
        }
        for (const Appending append : {AppendEscaped, AppendSegment}) {
            const std::u16string expected = Escape(text + u"x", append);
            for (std::size_t before = 0; before < 70; ++before) {
                const std::u16string front(before, u'x');
                const std::u16string back(random() % 40, u'x');
                ASSERT_EQ(Escape(front + text + u"x" + back, append), front + expected + back);
            }
        }
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
