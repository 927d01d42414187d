#include <generalutilities/text/words.h>

#include <gtest/gtest.h>
#include <map>
#include <tuple>

namespace generalutilities {
namespace {

using Separators = std::tuple<char16_t, char16_t, char16_t, char16_t>;

Separators Of(std::int32_t langId) {
    const NumberSeparators found = NumberSeparators::OfLanguage(langId);
    return {found.thousands, found.decimal, found.altThousands, found.altDecimal};
}

const Separators None{};
const Separators PointAndComma(u',', u'.', 0, 0);
const Separators CommaAndBlank(u'\u00A0', u',', u' ', 0);
const Separators CommaAndPoint(u'.', u',', 0, 0);
const Separators PointAndApostrophe(u'\'', u'.', 0, 0);

TEST(NumberSeparators, FollowTheWholeIdentifier) {
    const std::pair<std::int32_t, Separators> cases[] = {
        {1025, PointAndComma},
        {1033, PointAndComma},
        {1072, PointAndComma},
        {1078, PointAndComma},
        {2057, PointAndComma},
        {21514, PointAndComma},
        {1026, CommaAndBlank},
        {1036, CommaAndBlank},
        {58380, CommaAndBlank},
        {1027, CommaAndPoint},
        {1031, CommaAndPoint},
        {58378, CommaAndPoint},
        {1047, PointAndApostrophe},
        {2055, PointAndApostrophe},
        {4108, PointAndApostrophe},
        {5127, PointAndApostrophe},
        {0, None},
        {9, None},
        {1024, None},
        {1131, None},
        {22538, None},
        {65536 + 1033, None},
        {-1, None},
        {-64503, None},
        {58379, None},
    };
    for (const auto& [langId, expected] : cases) {
        EXPECT_EQ(Of(langId), expected) << langId;
    }
}

TEST(NumberSeparators, AreKnownForTwoHundredAndNineteenLanguages) {
    std::map<Separators, int> counts;
    std::int64_t sumOfIds = 0;
    for (std::int32_t langId = 0; langId < 0x10000; ++langId) {
        ++counts[Of(langId)];
        sumOfIds += Of(langId) != None ? langId : 0;
    }
    EXPECT_EQ(counts[PointAndComma], 124);
    EXPECT_EQ(counts[CommaAndBlank], 41);
    EXPECT_EQ(counts[CommaAndPoint], 50);
    EXPECT_EQ(counts[PointAndApostrophe], 4);
    EXPECT_EQ(sumOfIds, 1007193);
}

}  // namespace
}  // namespace generalutilities
