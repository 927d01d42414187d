#include <generalutilities/text/words.h>

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace generalutilities {
namespace {

TEST(FoldBlanksAndCodes, LeavesOneSpaceForEachRun) {
    struct {
        std::u16string_view text;
        std::u16string_view expected;
    } const cases[] = {
        {u"", u""},
        {u"a b", u"a b"},
        {u"  a {1} {2}  b{3}", u" a b "},
        {u"a{1}b{2}{3}c", u"a b c"},
        {u"{1}", u" "},
        {u"{}{x}{1", u"{}{x}{1"},
        {u"{1{2}", u"{1 "},
        {u"a\u00A0\t \t", u"a\u00A0\t \t"},
        {u"\\{1}", u"\\{1}"},
        {u"\\\\{1}", u"\\\\ "},
        {u"\\\\\\{1}", u"\\\\\\{1}"},
        {u"\\ {1}", u"\\ {1}"},  // blanks between do not free the brace
        {u"\\  {1}", u"\\ {1}"},
        {u"\\ \\{1}", u"\\ \\ "},  // two backslashes, wherever the blank stands
        {u"\\a{1}", u"\\a "},
        {u"\\{1}{2}", u"\\{1} "},
        {u"\\{{1}", u"\\{ "},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(FoldBlanksAndCodes(each.text), each.expected);
    }
    using namespace std::string_view_literals;
    EXPECT_EQ(FoldBlanksAndCodes(u"\0 {1}\0"sv), u"\0 \0"sv);
}

TEST(ToIndex, MakesKeys) {
    using namespace std::string_view_literals;
    struct {
        std::u16string_view text;
        std::u16string_view key;
        std::int32_t size = 50;
        std::int32_t langId = 1033;
    } const cases[] = {
        {u"", u""},
        {u"  Hello   world  ", u"Hello world"},
        {u"123 abc 456 def 789", u"abc def"},
        {u"ab 1,000 cd", u"ab cd"},
        {u"ab1 2cd", u"ab1 cd"},
        {u"{1}abc{2}def{3}", u"abc def"},
        {u"a, b", u"a, b"},
        {u"a, b...", u"a, b"},
        {u"12 34", u""},
        {u"...", u""},
        {u"{1}", u""},
        {u"ab cd", u"ab", 3},
        {u"ab cd", u"ab", 2},
        {u"ab cd", u"a", 1},
        {u"ab cd", u"ab c", 4},
        {u"ab  cd", u"ab c", 4},
        {u"ab 1 cd", u"ab c", 4},
        {u"ab 1 cd", u"ab", 3},
        {u"ab cd", u"ab cd", std::numeric_limits<std::int32_t>::max()},
        {u"ab", u"", 0},
        {u"ab", u"", -1},
        {u"ab", u"", std::numeric_limits<std::int32_t>::min()},
        {u"1 000 francs", u"francs", 50, 1036},
        {u"l'homme d'\u00E9tat", u"l'homme d'\u00E9tat", 50, 1036},
        {u"the dog's 'bone'", u"the dog's 'bone"},
        {u"\u6F22 1 \u5B57", u"\u6F22 \u5B57"},
        {u"\u3007 \u6F22", u"\u6F22"},
        {u"a\\{1}b", u"a\\{}b"},
        {u"a\u00A0 b", u"a\u00A0 b"},
        {u"\u00C9a B", u"\u00C9a B"},
        {u"ab\0cd"sv, u"ab"sv},
        {u"\0cd"sv, u""sv},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(ToIndex(each.text, each.langId, each.size), each.key);
    }
    EXPECT_EQ(ToIndex(std::u16string(60, u'x'), 1033), std::u16string(50, u'x'));
}

TEST(ToIndex, NeverEndsInASpace) {
    const std::u16string_view text = u"a bb 12 c{1}d  ee, f 3,4 g";
    const std::u16string longest = ToIndex(text, 1033);
    EXPECT_EQ(longest, u"a bb c d ee, f g");
    for (std::int32_t size = 1; size < 20; ++size) {
        std::u16string expected = longest.substr(0, static_cast<std::size_t>(size));
        if (expected.back() == u' ') {
            expected.pop_back();
        }
        EXPECT_EQ(ToIndex(text, 1033, size), expected);
    }
}

}  // namespace
}  // namespace generalutilities
