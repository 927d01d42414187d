#include <generalutilities/extview/source_key.h>

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

constexpr std::int32_t English = 1033;

TEST(MakeSourceKey, KeepsWordsAndWhatStandsBetween) {
    const std::u16string fortyNine(49, u'w');
    struct {
        std::u16string text;
        std::u16string expected;
    } const cases[] = {
        {u"", u""},
        {u"   ", u""},
        {u"12 34 ...", u""},
        {u"  Hello,   world!  ", u"Hello, world"},
        {u"Page 12 of 34", u"Page of"},  // the blanks around a number become one
        {u"{1}Press {2}the{3} key{4}", u"Press the key"},
        {u"... then", u"then"},                  // nothing before the first word
        {u"a, 5. b", u"a, . b"},                 // separators of two runs are joined
        {u"\u6F22\u5B57 a", u"\u6F22\u5B57 a"},  // East Asian units count as words
        {fortyNine + u" tail", fortyNine},       // cut behind the blank, which then goes, too
        {std::u16string(60, u'w'), std::u16string(50, u'w')},
        {fortyNine + u"w tail", fortyNine + u"w"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(MakeSourceKey(text, English), expected) << testing::PrintToString(text);
    }
}

TEST(MakeSourceKey, UsesTheSeparatorsOfTheLanguage) {
    EXPECT_EQ(MakeSourceKey(u"a 1'000 b", 2055), u"a b");
    EXPECT_EQ(MakeSourceKey(u"a 1'000 b", English), u"a ' b");
}

TEST(CompareForm, DropsNumbersAndOuterBlanksAlone) {
    EXPECT_EQ(CompareForm(u"  Page 12 of  34 ", English), u"Page  of");
    EXPECT_EQ(CompareForm(u"a, {1} b.", English), u"a, {1} b.");
    EXPECT_EQ(CompareForm(u"1,000.50", English), u"");
    EXPECT_EQ(CompareForm(u"", English), u"");
}

}  // namespace
}  // namespace generalutilities
