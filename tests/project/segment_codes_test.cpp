#include <generalutilities/extview/segment_text.h>
#include <generalutilities/project/segment_codes.h>

#include "case_table.h"
#include "project/placeholders.h"

#include <random>

namespace generalutilities {
namespace {

TEST(Placeholders, AreFoundAndNothingElse) {
    for (const auto& row : CaseTable("placeholders.tsv")) {
        std::u16string found;
        for (std::size_t i = 0; i < row[0].size();) {
            const std::size_t length = ProgramPlaceholderLength(row[0], i);
            if (length > 0) {
                found += (found.empty() ? u"" : u"¦") + row[0].substr(i, length);
            }
            i += std::max<std::size_t>(length, 1);
        }
        EXPECT_EQ(found, row[1]) << testing::PrintToString(row[0]);
    }
}

TEST(SegmentText, NumbersPlaceholdersByTheSource) {
    SegmentTextMaker maker(TextForm::Placeholders);
    EXPECT_EQ(maker.Source(u"%s: %d of %d {x}"),
              u"\u0006{1}\u0007%s\u0008: \u0006{2}\u0007%d\u0008 of \u0006{3}\u0007%d\u0008 "
              u"\u0006{4}\u0007{x}\u0008");
    const std::u16string translation = maker.Translation(u"{x} %d/%d/%d %i");
    EXPECT_EQ(StripCodeMarkers(translation), u"{4} {2}/{3}/{5} {6}");
}

TEST(SegmentText, EscapesPlainTextAndLeavesSegmentText) {
    EXPECT_EQ(SegmentTextMaker(TextForm::Plain).Source(u"C:\\{x} %s"), u"C:\\\\\\{x\\} %s");
    EXPECT_EQ(SegmentTextMaker(TextForm::Segment).Source(u"C:\\{x} %s"), u"C:\\{x} %s");
    EXPECT_EQ(SegmentTextMaker(TextForm::Placeholders).Source(u"a\\b"), u"a\\\\b");
}

TEST(SegmentText, GivesThePlainTextBack) {
    std::mt19937 random(20240611);
    constexpr std::u16string_view Pieces[] = {
        u"%s", u"{", u"}", u"\\",     u"<b>",    u"%(n)d",  u"{x}",  u"a",
        u" ",  u"%", u"<", u"\xD800", u"\xFFFF", u"\x05D0", u"\r\n", u"{{y}}"};
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        for (unsigned int i = random() % 12; i > 0; --i) {
            text += Pieces[random() % std::size(Pieces)];
        }
        for (const TextForm form : {TextForm::Plain, TextForm::Placeholders}) {
            SegmentTextMaker maker(form);
            ASSERT_EQ(PlainText(maker.Source(text)), text) << "round " << round;
            maker.Source(u"%s {x} %(n)d");
            ASSERT_EQ(PlainText(maker.Translation(text)), text) << "round " << round;
        }
    }
}

TEST(PlainText, SurvivesBrokenSegmentText) {
    EXPECT_EQ(PlainText(u"a\\"), u"a\\");
    EXPECT_EQ(PlainText(u"\\n"), u"\\n");
    EXPECT_EQ(PlainText(u"\u0006ab\u0008c"), u"abc") << "a code that hides nothing";
    EXPECT_EQ(PlainText(u"\u0006ab\u0007c\u0007"), u"abc");
}

TEST(Codes, AreTheGroupsThatStripBracesRemoves) {
    using List = std::vector<std::u16string_view>;
    EXPECT_EQ(CodesOf(u"a{1}b{x{y}z}"), (List{u"{1}", u"{x{y}"}));
    EXPECT_EQ(CodesOf(u"\\{1} \\\\{2} \\\\\\{3}"), (List{u"{2}"}));
    EXPECT_EQ(CodesOf(u"{1"), List{});
    EXPECT_EQ(CodesOf(u"{1}\\{2}"), List{u"{1}"});
    EXPECT_EQ(CodesOf(u"{\\}{2}"), (List{u"{\\}", u"{2}"})) << "a group ends at its first brace";
}

TEST(Codes, AreComparedAsAMultiset) {
    using Kind = CodeDifference::Kind;
    using List = std::vector<CodeDifference>;
    EXPECT_EQ(CompareCodes(u"{1}a{2}", u"{2}b{1}"), List{});
    EXPECT_EQ(
        CompareCodes(u"{1}{2}{2}{2}", u"{1}{1}{3}{2}{3}"),
        (List{{Kind::Lost, u"{2}", 2}, {Kind::Doubled, u"{1}", 1}, {Kind::Added, u"{3}", 2}}));
    EXPECT_EQ(CompareCodes(u"{1}", u"\\{1}"), (List{{Kind::Lost, u"{1}", 1}}));
}

TEST(HiddenCodes, ComeBackOrAreRefused) {
    for (const auto& row : CaseTable("hidden_codes.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row));
        std::u16string restored = u"untouched";
        std::u16string missing;
        const bool done = RestoreHiddenCodes(row[0], row[1], row[2], restored, missing);
        EXPECT_EQ(done, !row[3].empty());
        EXPECT_EQ(restored, done ? row[3] : u"untouched");
        EXPECT_EQ(missing.empty(), done);
        EXPECT_TRUE(!done || StripCodeMarkers(restored) == row[0]);
    }
}

}  // namespace
}  // namespace generalutilities
