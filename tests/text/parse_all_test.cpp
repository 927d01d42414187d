#include "text/tokens.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

void ExpectTokens(std::initializer_list<TokenCase> cases) {
    for (const TokenCase& each : cases) {
        EXPECT_EQ(Describe(each.text, AllTokens(each.text, each.langId)), each.tokens);
    }
}

TEST(ParseAll, FindsWords) {
    ExpectTokens({
        {u"", u""},
        {u"Hello, world", u"w:Hello|s:, |w:world"},
        {u"ab12cd 12ab", u"w:ab12cd|s: |n:12|w:ab"},
        {u"R&D&", u"w:R&D&"},
        {u"&File", u"s:&|w:File"},
        {u"a & &b", u"w:a|s: & &|w:b"},
        {u"&", u"s:&"},
        {u"a\u0301\uAC00b", u"w:a\u0301\uAC00b"},
    });
}

TEST(ParseAll, TakesEastAsianUnitsOneByOne) {
    ExpectTokens({
        {u"\u6F22\u5B57", u"e:\u6F22|e:\u5B57"},
        {u"a\u6F22b", u"w:a|e:\u6F22|w:b"},
        {u"abc\u30AB", u"w:abc|e:\u30AB"},
        {u"a\u30FBb", u"w:a|e:\u30FB|w:b"},
        // Number first, East Asian second.
        {u"\u3007\u3021", u"n:\u3007\u3021"},
        {u"a\u3007b", u"w:a\u3007b"},
        {u"\u6F22\u3007", u"e:\u6F22|n:\u3007"},
        {u"&\u6F22", u"s:&|e:\u6F22"},
    });
}

TEST(ParseAll, TreatsTheApostropheByPrimaryLanguage) {
    ExpectTokens({
        {u"don't", u"w:don't"},
        {u"don't", u"w:don't", 2057},
        {u"dog's", u"w:dog|s:'|w:s"},
        {u"DOG'S", u"w:DOG|s:'|w:S"},
        {u"it'so", u"w:it|s:'|w:so"},  // any "s", also the first of a longer word
        {u"dogs' bones", u"w:dogs|s:' |w:bones"},
        {u"dogs'", u"w:dogs|s:'"},
        {u"a'1", u"w:a'1"},
        {u"a'\u3007", u"w:a'\u3007"},
        {u"a'\u6F22", u"w:a|s:'|e:\u6F22"},
        {u"a'&b", u"w:a|s:'&|w:b"},
        {u"foto's m'n", u"w:foto|s:'|w:s|s: |w:m|s:'|w:n", 1043},
        {u"l'homme", u"w:l'|w:homme", 1036},
        {u"l'1", u"w:l'|n:1", 1036},
        {u"l'\u6F22", u"w:l|s:'|e:\u6F22", 1036},
        {u"l' homme", u"w:l|s:' |w:homme", 1036},
        {u"l'", u"w:l|s:'", 1036},
        {u"d'l'homme", u"w:d'|w:l'|w:homme", 4},
    });
}

TEST(ParseAll, FindsPlaceholdersThatNoBackslashProtects) {
    ExpectTokens({
        {u"{12}x", u"c:{12}|w:x"},
        {u"a {12} b", u"w:a|s: |c:{12}|s: |w:b"},
        {u"{12", u"s:{|n:12"},
        {u"{x}", u"s:{|w:x|s:}"},
        {u"{{1}", u"s:{|c:{1}"},
        {u"\\{1}", u"s:\\{|n:1|s:}"},
        {u"\\\\{1}", u"s:\\\\|c:{1}"},
        {u"\\\\\\{1}{2}", u"s:\\\\\\{|n:1|s:}|c:{2}"},
        {u"\\ {1}", u"s:\\ |c:{1}"},
        {u"\\{.5", u"s:\\{|n:.5"},
    });
}

TEST(ParseAll, FindsNumbers) {
    ExpectTokens({
        {u"1,000.50 x", u"n:1,000.50|s: |w:x"},
        {u"1.000,50", u"n:1.000,50", 1031},
        {u"1 000,50", u"n:1 000,50", 1036},
        {u"1'000.50", u"n:1'000.50", 2055},
        {u"1,,2", u"n:1|s:,,|n:2"},
        {u"1,2,", u"n:1,2|s:,"},
        {u"1,000", u"n:1|s:,|n:000", 4},
        {u".5", u"n:.5"},
        {u"x.5", u"w:x|s:.|n:5"},
        {u"a .5", u"w:a|s: |n:.5"},
        {u"a  .5", u"w:a|s:  |n:.5"},
        {u"..5", u"s:.|n:.5"},
        {u"{1}.5", u"c:{1}|n:.5"},
        {u"\u30AB.5", u"e:\u30AB|s:.|n:5"},
        {u"a .x", u"w:a|s: .|w:x"},
        {u"a .", u"w:a|s: ."},
    });
}

TEST(ParseAll, TakesAnyCodeUnit) {
    using namespace std::string_view_literals;
    ExpectTokens({{u"a\0b"sv, u"w:a|s:\0|w:b"sv}, {u"1\0002"sv, u"n:1|s:\0|n:2"sv, 4}});
    const std::u16string lone = {0xDC00, u'a'};
    const std::u16string expected = {u's', u':', 0xDC00, u'|', u'w', u':', u'a'};
    EXPECT_EQ(Describe(lone, AllTokens(lone, 1033)), expected);
}

TEST(ParseAll, ParsesHostileTextsInLinearTime) {
    for (const std::u16string& text : HostileTexts()) {
        const auto tokens = AllTokens(text, 1033);
        ASSERT_FALSE(tokens.empty());
        EXPECT_EQ(static_cast<std::size_t>(tokens.back().end), text.size());
    }
}

}  // namespace
}  // namespace generalutilities
