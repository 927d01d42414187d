#include <generalutilities/text/words.h>

#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <string>

namespace generalutilities {
namespace {

TEST(SimplifyString, ReplacesPunctuation) {
    using namespace std::string_view_literals;
    struct {
        std::u16string_view text;
        std::u16string_view expected;
        std::int32_t lcid = 1033;
    } const cases[] = {
        {u"", u""},
        {u"\u201Ca\u201D \u00ABb\u00BB", u"\"a\" \"b\""},
        {u"[x]{y}<z>\u2329\u232A", u"(x)(y)<z>()"},
        {u"\u2018\u2019\u02BC\u2039", u"''''"},
        {u"\u3001\u3002\uFF61", u",.."},
        {u"\u00AD\u2014\u301C\uFF0D", u"----"},
        {u"\uFF01\uFE55\uFF1B\u037E", u"!:;?"},
        {u"\u2212\u2026\u00B7", u"\u2212\u2026\u00B7"},  // minus, ellipsis and middle dot stay
        {u"a;", u"a;"},
        {u"a;", u"a?", 1032},
        {u"\uFF1B", u";", 1032},  // made from another unit: not replaced again
        {u"[\0]"sv, u"("sv},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(SimplifyString(each.text, each.lcid), each.expected);
    }
}

TEST(SimplifyString, ReplacesOneHundredAndNineteenUnits) {
    std::u16string units(0xFFFF, u'\0');
    std::iota(units.begin(), units.end(), u'\1');
    const std::u16string plain = SimplifyString(units, 1033);
    ASSERT_EQ(plain.size(), units.size());
    std::map<char16_t, int> counts;
    for (std::size_t i = 0; i < units.size(); ++i) {
        counts[plain[i]] += plain[i] != units[i];
    }
    std::erase_if(counts, [](const auto& each) { return each.second == 0; });
    const std::map<char16_t, int> expected = {{u'!', 3},  {u'"', 10}, {u'\'', 9}, {u'(', 31},
                                              {u')', 31}, {u',', 6},  {u'-', 16}, {u'.', 5},
                                              {u':', 2},  {u';', 2},  {u'?', 4}};
    EXPECT_EQ(counts, expected);
}

}  // namespace
}  // namespace generalutilities
