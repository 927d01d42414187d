#include "text/tokens.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

void ExpectTokens(std::initializer_list<TokenCase> cases) {
    for (const TokenCase& each : cases) {
        EXPECT_EQ(Describe(each.text, StepTokens(each.text, each.langId)), each.tokens);
    }
}

TEST(ParseStep, FindsWords) {
    ExpectTokens({
        {u"", u""},
        {u"Hello, world", u"w:Hello|s:, |w:world"},
        {u"ab12cd 12ab", u"w:ab12cd|s: |n:12|w:ab"},
        {u"e\u0301a \u0301", u"w:e\u0301a|s: |w:\u0301"},
        {u"\uAC00\uAC01abc", u"w:\uAC00\uAC01abc"},
        {u"\uFF21\uFF22", u"w:\uFF21\uFF22"},
        {u"\u3005a\u3001a", u"w:\u3005a|s:\u3001|w:a"},
    });
}

TEST(ParseStep, PutsTheApostropheIntoTheWord) {
    ExpectTokens({
        {u"don't", u"w:don't"},
        {u"dogs' bones", u"w:dogs'|s: |w:bones"},
        {u"rock''n", u"w:rock''n"},
        {u"'tis", u"s:'|w:tis"},
        {u"l'homme", u"w:l'homme"},
        {u"l'homme", u"w:l'|w:homme", 1036},
        {u"l''homme", u"w:l'|s:'|w:homme", 1036},
        {u"don't", u"w:don'|w:t", 2057},  // English of another country
        {u"&'a", u"w:&'a"},
        {u"&'a", u"w:&'|w:a", 1036},
    });
}

TEST(ParseStep, LetsAnAmpersandStartAWord) {
    ExpectTokens({
        {u"R&D &File", u"w:R&D|s: |w:&File"},
        {u"& x", u"s:& |w:x"},
        {u"a &b", u"w:a|s: |w:&b"},
        {u"a & b", u"w:a|s: & |w:b"},
        {u"&", u"w:&"},
        {u"a &", u"w:a|s: &"},
        {u"&&", u"w:&&"},
        {u"&& x", u"w:&&|s: |w:x"},
        {u"&1", u"w:&1"},
        {u" &&a", u"s: |w:&&a"},
        {u" &1", u"s: &|n:1"},
        {u" &&1 &", u"s: &&|n:1|s: &"},
        {u" &\u6F22", u"s: |w:&\u6F22"},  // Han is a letter here
        {u" &\u30AB", u"s: &|e:\u30AB"},
        {u"&\u30AB", u"s:&|e:\u30AB"},
        {u"& &a", u"s:& |w:&a"},
        {u"&-&a", u"s:&-|w:&a"},
        {u"- &-&a", u"s:- &-|w:&a"},
        // The unit behind an "&" that starts nothing is taken along, whatever it would start.
        {u"-&{1}", u"s:-&{|n:1|s:}"},
        {u"-&.5", u"s:-&.|n:5"},
    });
}

TEST(ParseStep, FindsPlaceholders) {
    ExpectTokens({
        {u"{12}x", u"c:{12}|w:x"},
        {u"a {12} b", u"w:a|s: |c:{12}|s: |w:b"},
        {u"{1}{2}", u"c:{1}|c:{2}"},
        {u"{12", u"s:{|n:12"},
        {u"{x}", u"s:{|w:x|s:}"},
        {u"{}", u"s:{}"},
        {u"{", u"s:{"},
        {u"a{1}", u"w:a|c:{1}"},
        {u"{\u0661}", u"s:{|n:\u0661|s:}"},  // only ASCII digits
        {u"\\{1}", u"s:\\|c:{1}"},
        {u"{ {1}", u"s:{ |c:{1}"},
        {u"{{1}", u"s:{{|n:1|s:}"},  // the second brace is taken along by the first
        {u"{-{1}", u"s:{-|c:{1}"},
        {u"{&a", u"s:{&|w:a"},
    });
}

TEST(ParseStep, FindsNumbers) {
    ExpectTokens({
        {u"1,000.50 x", u"n:1,000.50|s: |w:x"},
        {u"1.000,50 x", u"n:1.000,50|s: |w:x", 1031},
        {u"1 000,50", u"n:1 000,50", 1036},
        {u"1\u00A0000,50", u"n:1\u00A0000,50", 1036},
        {u"1'000.50", u"n:1'000.50", 2055},
        {u"1,,2", u"n:1|s:,,|n:2"},
        {u"1,2,", u"n:1,2|s:,"},
        {u"1.2.3", u"n:1.2.3"},
        {u"1,000", u"n:1|s:,|n:000", 4},
        {u"\u00BD \u0661,\u0662", u"n:\u00BD|s: |n:\u0661,\u0662"},
    });
}

TEST(ParseStep, LooksBehindADecimalSign) {
    ExpectTokens({
        {u".5", u"n:.5"},
        {u".5.6,7.x", u"n:.5.6,7|s:.|w:x"},
        {u"x.5", u"w:x|s:.|n:5"},
        {u"a .5", u"w:a|n: .5"},
        {u"a  .5", u"w:a|s:  .|n:5"},
        {u" .5", u"n: .5"},
        {u"..5", u"n:..5"},
        {u"{1}.5", u"c:{1}|s:.|n:5"},
        {u"\u30AB.5", u"e:\u30AB|s:.|n:5"},
        {u"a ,5", u"w:a|n: ,5", 1031},
        {u"a ,5", u"w:a|s: ,|n:5"},
        {u"a .", u"w:a|s: ."},
        {u"a .x", u"w:a|s: .|w:x"},
        {u". 5", u"s:. |n:5"},
    });
}

TEST(ParseStep, TakesHanAndKanaOneByOneUnlessAWordHoldsThem) {
    ExpectTokens({
        {u"\u6F22\u5B57", u"e:\u6F22|e:\u5B57"},
        {u"abc\u6F22\u5B57", u"w:abc\u6F22\u5B57"},
        {u"a\u6F22b", u"w:a\u6F22b"},
        {u"\u6F22abc", u"e:\u6F22|w:abc"},
        {u"\u30AB\u30BF\u30AB\u30CA", u"e:\u30AB|e:\u30BF|e:\u30AB|e:\u30CA"},
        {u"abc\u30AB", u"w:abc|e:\u30AB"},
        {u"a\u30FBb", u"w:a|e:\u30FB|w:b"},
        {u"123\u6F22123", u"n:123|e:\u6F22|n:123"},
        {u"\u3007 a\u3007", u"e:\u3007|s: |w:a\u3007"},
        {u"1\u3007", u"n:1\u3007"},  // a number when a number holds it
    });
}

TEST(ParseStep, TakesAnyCodeUnit) {
    using namespace std::string_view_literals;
    const std::u16string lone = {u'a', 0xD800, u'b', 0xDC00};
    const std::u16string expected = {u'w', u':', u'a', u'|', u's', u':', 0xD800, u'|',
                                     u'w', u':', u'b', u'|', u's', u':', 0xDC00};
    EXPECT_EQ(Describe(lone, StepTokens(lone, 1033)), expected);
    // U+0000 is a separator like any other: it never stands for a language's missing separator.
    ExpectTokens({{u"a\0b"sv, u"w:a|s:\0|w:b"sv},
                  {u"1\0002"sv, u"n:1|s:\0|n:2"sv},
                  {u"\0002"sv, u"s:\0|n:2"sv, 4}});
}

TEST(ParseStep, StartsAnywhereAndEndsBehindTheText) {
    const WordParser parser(1033);
    EXPECT_EQ(parser.ParseStep(u"don't", 2), (TextToken{2, 5, qlnwtWord}));
    EXPECT_EQ(parser.ParseStep(u"a .5", 2), (TextToken{2, 3, qlnwtSeparator}));
    EXPECT_EQ(parser.ParseStep(u"a..5", 2), (TextToken{2, 3, qlnwtSeparator}));
    EXPECT_EQ(parser.ParseStep(u"{12}", 1), (TextToken{1, 3, qlnwtDigit}));
    EXPECT_EQ(parser.ParseStep(u"abc", 3), std::nullopt);
    EXPECT_EQ(parser.ParseStep(u"abc", static_cast<std::size_t>(-1)), std::nullopt);
    EXPECT_EQ(parser.ParseStep(u"", 0), std::nullopt);
}

TEST(ParseStep, WalksHostileTextsInLinearTime) {
    for (const std::u16string& text : HostileTexts()) {
        const auto tokens = StepTokens(text, 1033);
        ASSERT_FALSE(tokens.empty());
        EXPECT_EQ(static_cast<std::size_t>(tokens.back().end), text.size());
    }
}

}  // namespace
}  // namespace generalutilities
