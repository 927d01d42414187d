#include <generalutilities/text/random_text.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace generalutilities {
namespace {

using namespace std::string_view_literals;

TEST(RandomSource, GivesThePublishedSequence) {
    RandomSource random(1);
    EXPECT_EQ(random.Next(), 41u);
    EXPECT_EQ(random.Next(), 18467u);
    EXPECT_EQ(random.Next(), 6334u);
}

TEST(GenerateText, DrawsEveryMemberEvenly) {
    CharSet set;
    set.AddRange(u'a', u'f');
    set.AddRange(0x4E00, 0x4E06);
    RandomSource random(7);
    std::u16string text(100000, u'\0');
    GenerateText(set, random, text.data(), text.size());
    for (const char16_t unit : u"abcde\u4E00\u4E01\u4E02\u4E03\u4E04"sv) {
        EXPECT_NEAR(static_cast<double>(std::ranges::count(text, unit)), 10000, 600)
            << static_cast<int>(unit);
    }
    EXPECT_LT(std::ranges::count(text, u'\u4E05'), 20) << "the last one is rare";
}

}  // namespace
}  // namespace generalutilities
