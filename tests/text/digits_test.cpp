#include <generalutilities/text/digits.h>

#include <gtest/gtest.h>
#include <map>
#include <numeric>

namespace generalutilities {
namespace {

TEST(FoldDigits, GivesEachUnitItsDigit) {
    struct {
        std::u16string_view text;
        std::u16string_view digits;
        std::u16string_view numerals;
    } const cases[] = {
        {u"", u"", u""},
        {u"1\u0663\uFF11\u0E59", u"1319", u"1319"},
        {u"\u2163\u2169", u"4\u2169", u"40"},
        {u"\u00BD\u00B2\u215F", u"\u00BD21", u"021"},
        {u"\u24EA\u24FF\u24EB\u24F4", u"00\u24EB\u24F4", u"0000"},
        {u"\u96F6\u767E\u4E07", u"0\u767E\u4E07", u"000"},
        {u"\u5F10\u8CAE\u53C1", u"223", u"223"},
        {u"\u4E8C\u5341", u"2\u5341", u"20"},
        {u"\u0BE6\u0BE7\u09F8\u09F7", u"\u0BE61\u09F84", u"\u0BE61\u09F84"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(FoldDigits(each.text, false), each.digits);
        EXPECT_EQ(FoldDigits(each.text), each.numerals);
    }
}

/// The whole world of code units, at every alignment of a vector.
TEST(FoldDigits, FoldsSoManyUnitsToEachDigit) {
    std::u16string units(0x10000, u'\0');
    std::iota(units.begin(), units.end(), u'\0');
    const std::u16string digits = FoldDigits(units, false);
    const std::u16string all = FoldDigits(units, true);
    std::map<char16_t, int> counts;
    int numerals = 0;
    for (std::size_t i = 0; i < units.size(); ++i) {
        counts[digits[i]] += digits[i] != units[i];
        numerals += all[i] != digits[i];
        EXPECT_TRUE(all[i] == digits[i] || (digits[i] == units[i] && all[i] == u'0')) << i;
        for (const std::size_t length : {1u, 17u, 40u}) {
            const auto part = std::u16string_view(units).substr(i, length);
            ASSERT_EQ(FoldDigits(part), all.substr(i, part.size())) << i;
        }
    }
    std::erase_if(counts, [](const auto& each) { return each.second == 0; });
    EXPECT_EQ(numerals, 156);
    EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), 0,
                              [](int sum, const auto& each) { return sum + each.second; }),
              533 - 156);
    EXPECT_EQ(counts.size(), 10u);
}

}  // namespace
}  // namespace generalutilities
