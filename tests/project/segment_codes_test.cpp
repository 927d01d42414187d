#include <generalutilities/extview/segment_text.h>
#include <generalutilities/project/segment_codes.h>

#include "project/placeholders.h"

#include <gtest/gtest.h>
#include <random>

namespace generalutilities {
namespace {

std::vector<std::u16string> PlaceholdersOf(std::u16string_view text) {
    std::vector<std::u16string> found;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = ProgramPlaceholderLength(text, i);
        if (length > 0) {
            found.emplace_back(text.substr(i, length));
        }
        i += length > 0 ? length : 1;
    }
    return found;
}

TEST(Placeholders, AreFoundAndNothingElse) {
    using List = std::vector<std::u16string>;
    const std::pair<std::u16string_view, List> cases[] = {
        {u"%s of %d", {u"%s", u"%d"}},
        {u"%1$s %2$-5.2f %-*d %.*f", {u"%1$s", u"%2$-5.2f", u"%-*d", u"%.*f"}},
        {u"%(name)s %(size).1fMB", {u"%(name)s", u"%(size).1f"}},
        {u"%lu %zd %hhx", {u"%lu", u"%zd", u"%hhx"}},
        {u"100 % der 50%, 100%% %", {}},
        {u"% s %(name %(a b)s %1 %$s", {}},
        {u"{} {0} {name} {user.id!r:>8} {n:,}",
         {u"{}", u"{0}", u"{name}", u"{user.id!r:>8}", u"{n:,}"}},
        {u"{{name}} ${x}", {u"{{name}}", u"{x}"}},
        {u"{ not one } {a b} {", {}},
        {u"<b>x</b> <br/> <a href=\"u\">", {u"<b>", u"</b>", u"<br/>", u"<a href=\"u\">"}},
        {u"a < b > c <1> <> <b", {}},
        {u"<a <b>", {u"<b>"}},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(PlaceholdersOf(text), expected) << std::string(text.begin(), text.end());
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

struct RestoreCase {
    std::u16string_view shown, target, source;
    std::u16string_view expected;  ///< empty: refused
};

TEST(HiddenCodes, ComeBackOrAreRefused) {
    constexpr std::u16string_view One = u"\u0006{1}\u0007%s\u0008";
    const RestoreCase cases[] = {
        {u"new", u"old", u"src", u"new"},
        // Groups follow wherever they went; the source helps where the target had none.
        {u"x {1} y", u"\u0006{1}\u0007%s\u0008 old", u"", u"x \u0006{1}\u0007%s\u0008 y"},
        {u"{2}{1}", u"\u0006{1}\u0007%s\u0008\u0006{2}\u0007%d\u0008", u"",
         u"\u0006{2}\u0007%d\u0008\u0006{1}\u0007%s\u0008"},
        {u"x {1}", u"", u"a \u0006{1}\u0007%s\u0008", u"x \u0006{1}\u0007%s\u0008"},
        {u"{1}{1}", One, u"", u"\u0006{1}\u0007%s\u0008\u0006{1}\u0007%s\u0008"},
        {u"\\{1} {1}", One, u"", u"\\{1} \u0006{1}\u0007%s\u0008"},
        {u"{9} {1}", One, u"", u"{9} \u0006{1}\u0007%s\u0008"},
        {u"gone", One, u"", u""},
        {u"\\{1}", One, u"", u""},
        {u"{1}", u"\u0006{1}\u0007a\u0008\u0006{1}\u0007b\u0008", u"", u""},
        // Other shown texts stay where the text around them stays.
        {u"big bold house", u"\u0006bold\u0007<b>\u0008 house", u"",
         u"big \u0006bold\u0007<b>\u0008 house"},
        {u"fat house", u"\u0006bold\u0007<b>\u0008 house", u"", u""},
        {u"Hello", u"Hal\u0006\u0007!\u0008lo", u"", u""},
        {u"Hello world", u"Hallo\u0006\u0007!\u0008 world", u"", u"Hello\u0006\u0007!\u0008 world"},
        {u"Hello world", u"\u0006\u0007!\u0008Hallo world", u"", u"\u0006\u0007!\u0008Hello world"},
        {u"Hallo earth", u"Hallo world\u0006\u0007!\u0008", u"", u"Hallo earth\u0006\u0007!\u0008"},
        {u"Hallo my world", u"Hallo \u0006\u0007!\u0008world", u"",
         u"Hallo \u0006\u0007!\u0008my world"},
        // Marks in disorder cannot be told apart.
        {u"new", u"\u0006a\u0006b\u0007c\u0008\u0008", u"", u""},
        {u"new", u"a\u0007b", u"", u""},
        {u"{1}", u"", u"\u0006{1}\u0007", u"{1}"},
    };
    for (const RestoreCase& test : cases) {
        std::u16string restored = u"untouched";
        std::u16string missing;
        const bool done =
            RestoreHiddenCodes(test.shown, test.target, test.source, restored, missing);
        const std::string name(test.shown.begin(), test.shown.end());
        EXPECT_EQ(done, !test.expected.empty()) << name;
        EXPECT_EQ(restored, done ? test.expected : u"untouched") << name;
        EXPECT_EQ(missing.empty(), done) << name;
        if (done) {
            EXPECT_EQ(StripCodeMarkers(restored), test.shown) << name;
        }
    }
}

}  // namespace
}  // namespace generalutilities
