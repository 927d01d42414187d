#include <generalutilities/text/char_sets.h>

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

TEST(CharSets, HaveTheirCounts) {
    const struct {
        std::int32_t key;
        std::uint32_t count;
    } cases[] = {
        {4, 206},   {5, 71},     {6, 94},    {7, 96},      {8, 51},      {9, 60},     {10, 128},
        {11, 128},  {12, 128},   {13, 128},  {14, 128},    {15, 128},    {16, 128},   {17, 128},
        {18, 128},  {19, 87},    {20, 128},  {21, 192},    {22, 96},     {23, 16225}, {24, 6994},
        {25, 40},   {26, 20992}, {27, 384},  {28, 640},    {29, 96},     {30, 1232},  {31, 256},
        {32, 96},   {33, 32},    {34, 128},  {35, 80},     {36, 160},    {37, 128},   {38, 64},
        {39, 176},  {128, 124},  {129, 135}, {130, 13131}, {131, 20986}, {132, 122},  {133, 121},
        {134, 114}, {135, 981},
    };
    ASSERT_EQ(std::size(cases), 44u);
    CharSets sets;
    for (const auto& test : cases) {
        CharSet* const set = sets.Get(test.key);
        ASSERT_NE(set, nullptr) << test.key;
        EXPECT_EQ(set->Count(), test.count) << test.key;
        EXPECT_EQ(sets.Get(test.key), set) << "built once";
        std::int32_t last = CharSet::End;
        for (std::uint32_t number = 0; number < test.count; ++number) {
            ASSERT_LT(last, set->At(number)) << test.key << " at " << number;
            last = set->At(number);
        }
        EXPECT_EQ(set->At(test.count), CharSet::End);
        EXPECT_EQ(set->At(0xFFFFFFFF), CharSet::End);
    }
    // The rows of those drawn from a code page: one character more or less in another place would
    // show here.
    EXPECT_EQ(sets.Get(23)->RangeCount(), 3264u);
    EXPECT_EQ(sets.Get(24)->RangeCount(), 4144u);
    EXPECT_EQ(sets.Get(130)->RangeCount(), 3714u);
    EXPECT_EQ(sets.Get(131)->RangeCount(), 21u);
    for (const std::int32_t key : {0, 3, 40, 127, 136, 1252, -1, -2147483647 - 1}) {
        EXPECT_EQ(sets.Get(key), nullptr) << key;
        EXPECT_EQ(sets.Get(key), nullptr) << key;
    }
}

TEST(CharSets, NumberTheirMembers) {
    CharSets sets;
    const struct {
        std::int32_t key;
        std::uint32_t number;
        std::int32_t member;
    } cases[] = {
        {128, 0, 0x41},   {128, 25, 0x5A},      {128, 26, 0x61},  {128, 123, 0x192},
        {30, 0, 0xA000},  {30, 1168, 0xA490},   {23, 0, 0x3000},  {23, 16224, 0xFF19},
        {24, 0, 0x30},    {24, 6993, 0xFFE5},   {130, 0, 0x3000}, {130, 13130, 0xFF19},
        {131, 0, 0x3000}, {131, 20985, 0xFE51}, {135, 0, 0x20},   {135, 980, 0xFEFF},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(sets.Get(test.key)->At(test.number), test.member)
            << test.key << " at " << test.number;
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
