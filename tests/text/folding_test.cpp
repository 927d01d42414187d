#include <generalutilities/text/folding.h>

#include "platform/cpu.h"
#include "text/fold_into.h"

#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace generalutilities {
namespace {

using Function = std::u16string (*)(std::u16string_view);

struct FoldCase {
    Function fold;
    std::u16string_view text;
    std::u16string_view expected;
};

TEST(Folding, GivesTheDocumentedResults) {
    const FoldCase cases[] = {
        {ToUpper, u"straße", u"STRASSE"},
        {ToUpper, u"ßß", u"SSSS"},
        {ToLower, u"STRASSE", u"strasse"},
        {ToUpper, u"\u00FF", u"\u0178"},
        {ToLower, u"\u0178", u"\u00FF"},
        {ToUpper, u"\u03C2", u"\u03A3"},
        {ToLower, u"\u03A3", u"\u03C3"},
        {ToUpper, u"\u0131\u00B5", u"\u0131\u00B5"},
        {ToLower, u"\u0130", u"\u0130"},
        {ToLower, u"\u10A0", u"\u10D0"},
        {ToUpper, u"\u10D0", u"\u10D0"},
        {ToUpper, u"\u24D0\uFF41\u2170", u"\u24B6\uFF21\u2160"},
        {ToUpper, u"\u017F\u0180\u01C5\u01F9", u"\u017F\u0180\u01C5\u01F9"},
        {DeAccentString, u"\uFB01", u"fi"},
        {DeAccentString, u"\uFB05", u"ts"},
        {DeAccentString, u"\u2460\uFF21", u"1A"},
        {DeAccentString, u"\u00C5\u00C6", u"A\u00C6"},
        {DeAccentString, u"Éé", u"Ee"},
        {DeAccentString, u"e\u0301", u"e\u0301"},
        {DeAccentString, u"\u00A8\u3131\uAC00", u" \u1100\uAC00"},
        {DeAccentString, u"\u3300", u"\u30A2\u30FC\u30C8\u30CF"},
        {DeAccentString, u"\u321D\u321E\u327C\u327D",
         u"(\uC624\uC804)(\uC624\uD6C4)\uCC38\uACE0\uC8FC\uC758"},
        {DeAccentString, u"ß", u"ß"},
        {DeAccentUpperCaseString, u"ß\u00E9\uFB00", u"SSEFF"},
    };
    for (const FoldCase& each : cases) {
        EXPECT_EQ(each.fold(each.text), each.expected);
    }
    EXPECT_EQ(DeAccentString(u"\uFDFA").size(), 18u);
}

TEST(Folding, KeepsWhatHasNoRow) {
    using namespace std::string_view_literals;
    const std::u16string lone = {0xD800, u'x', 0xDC00, 0xDFFF, 0xD83D, 0xFFFF};
    const std::u16string loneUpper = {0xD800, u'X', 0xDC00, 0xDFFF, 0xD83D, 0xFFFF};
    for (const Function fold : {ToUpper, ToLower, DeAccentString, DeAccentUpperCaseString}) {
        EXPECT_EQ(fold(u""), u"");
        const bool upper = fold == ToUpper || fold == DeAccentUpperCaseString;
        EXPECT_EQ(fold(lone), upper ? loneUpper : lone);
        EXPECT_EQ(fold(u"\0\0001\0"sv), u"\0\0001\0"sv);
    }
    EXPECT_EQ(ToUpper(u"a\0ß\0"sv), u"A\0SS\0"sv);
    EXPECT_EQ(DeAccentString(u"\0é\0"sv), u"\0e\0"sv);
}

/// A text of every code unit, so that a fold meets each of them with neighbours that grow.
std::u16string AllUnits() {
    std::u16string units(0x10000, u'\0');
    std::iota(units.begin(), units.end(), u'\0');
    return units;
}

TEST(Folding, FoldsATextUnitByUnit) {
    const std::u16string all = AllUnits();
    for (const Function fold : {ToUpper, ToLower, DeAccentString, DeAccentUpperCaseString}) {
        std::u16string joined;
        for (const char16_t unit : all) {
            joined += fold({&unit, 1});
        }
        EXPECT_TRUE(fold(all) == joined);
    }
    EXPECT_EQ(ToLower(all).size(), all.size());
    EXPECT_EQ(ToUpper(all).size(), all.size() + 1);
}

TEST(Folding, UpperWithoutAccentsIsUpperOfWithoutAccents) {
    for (const char16_t unit : AllUnits()) {
        const std::u16string_view text(&unit, 1);
        ASSERT_EQ(DeAccentUpperCaseString(text), ToUpper(DeAccentString(text)))
            << std::hex << static_cast<unsigned>(unit);
    }
}

/// A text of units that stand together in real ones, and sometimes of any: runs of one range, cut
/// short at random.
std::u16string RandomText(std::mt19937& random) {
    const std::pair<char16_t, char16_t> ranges[] = {
        {0x20, 0x7F},     {0x20, 0x40},   {0x80, 0x24F},    {0x370, 0x3FF},
        {0x400, 0x4FF},   {0x530, 0x58F}, {0x2000, 0x206F}, {0x3000, 0x9FFF},
        {0xD700, 0xFFFF}, {0, 0xFFFF},    {0xDF, 0xDF},     {0xB5, 0xB7}};
    std::u16string text;
    const std::size_t scripts = 1 + random() % 3;
    const std::size_t size = random() % 300;
    while (text.size() < size) {
        const auto [first, last] = ranges[(random() % scripts * 5 + size) % std::size(ranges)];
        for (auto run = random() % 80; run-- > 0;) {
            text += static_cast<char16_t>(first + random() % (last - first + 1u));
        }
    }
    return text;
}

TEST(Folding, ByBlocksIsTheSameAsPlainly) {
    if (!HasAvx2()) {
        GTEST_SKIP() << "no processor for the vector form";
    }
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 20000; ++i) {
        const std::u16string text = RandomText(random);
        for (const Fold fold : {Fold::Upper, Fold::Lower, Fold::DeAccent, Fold::DeAccentUpper}) {
            // Of exactly the promised size, so that a sanitizer sees what is written beyond.
            std::vector<char16_t> plain(text.size());
            std::vector<char16_t> blocks(text.size());
            const std::size_t done = FoldPrefixPlainly(fold, text, plain.data());
            ASSERT_EQ(FoldPrefixByBlocks(fold, text, blocks.data()), done);
            plain.resize(done);
            blocks.resize(done);
            ASSERT_EQ(blocks, plain);
        }
    }
}

}  // namespace
}  // namespace generalutilities
