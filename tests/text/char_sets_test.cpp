#include <generalutilities/text/char_sets.h>

#include "case_table.h"

namespace generalutilities {
namespace {

TEST(CharSets, HoldTheMembersOfTheirKeys) {
    CharSets sets;
    const auto rows = CaseTable("char_sets.tsv");
    ASSERT_EQ(rows.size(), 44u);
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row));
        CharSet* const set = sets.Get(Number(row[0]));
        ASSERT_NE(set, nullptr);
        EXPECT_EQ(sets.Get(Number(row[0])), set) << "built once";
        ASSERT_EQ(set->Count(), static_cast<std::uint32_t>(Number(row[1])));
        EXPECT_EQ(set->RangeCount(), static_cast<std::size_t>(Number(row[2])));
        EXPECT_EQ(set->At(0), Number(row[3]));
        std::int32_t last = CharSet::End;
        std::int32_t sum = 0;
        for (std::uint32_t number = 0; number < set->Count(); ++number) {
            ASSERT_LT(last, set->At(number)) << number;
            last = set->At(number);
            sum += last;
        }
        EXPECT_EQ(last, Number(row[4]));
        EXPECT_EQ(sum, Number(row[5]));
        EXPECT_EQ(set->At(set->Count()), CharSet::End);
        EXPECT_EQ(set->At(0xFFFFFFFF), CharSet::End);
    }
    for (const std::int32_t key : {0, 3, 40, 127, 136, 1252, -1, -2147483647 - 1}) {
        EXPECT_EQ(sets.Get(key), nullptr) << key;
        EXPECT_EQ(sets.Get(key), nullptr) << key;
    }
}

TEST(CharSets, KeepTheFirstRangeOfTwoThatBeginAlike) {
    CharSet set;
    EXPECT_EQ(set.At(0), CharSet::End);
    set.AddRange(10, 12);
    set.AddChar(5);
    set.AddRange(10, 20);
    EXPECT_EQ(set.Count(), 3u);
    EXPECT_EQ(set.At(0), 5);
    EXPECT_EQ(set.At(2), 11);
}

}  // namespace
}  // namespace generalutilities
