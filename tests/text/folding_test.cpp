#include <generalutilities/text/folding.h>

#include "case_table.h"
#include "platform/cpu.h"
#include "text/fold_into.h"

#include <map>
#include <numeric>
#include <random>

namespace generalutilities {
namespace {

using Function = std::u16string (*)(std::u16string_view);

const std::map<std::u16string, Function> Functions = {
    {u"ToUpper", ToUpper},
    {u"ToLower", ToLower},
    {u"DeAccentString", DeAccentString},
    {u"DeAccentUpperCaseString", DeAccentUpperCaseString}};

TEST(Folding, GivesTheDocumentedResults) {
    for (const auto& row : CaseTable("folding.tsv")) {
        EXPECT_EQ(Functions.at(row[0])(row[1]), row[2]) << testing::PrintToString(row);
    }
}

/// All units in a row, so that a fold meets each of them with neighbours that grow.
TEST(Folding, FoldsATextUnitByUnit) {
    std::u16string all(0x10000, u'\0');
    std::iota(all.begin(), all.end(), u'\0');
    for (const auto& [name, fold] : Functions) {
        std::u16string joined;
        for (const char16_t unit : all) {
            joined += fold({&unit, 1});
        }
        EXPECT_TRUE(fold(all) == joined);
    }
    EXPECT_EQ(ToLower(all).size(), all.size());
    EXPECT_EQ(ToUpper(all).size(), all.size() + 1);
    EXPECT_TRUE(DeAccentUpperCaseString(all) == ToUpper(DeAccentString(all)));
}

/// A text of units that stand together in real ones, and sometimes of any: runs of one range, cut
/// short at random.
std::u16string RandomText(std::mt19937& random) {
    const std::pair<char16_t, char16_t> ranges[] = {
        {0x20, 0x7F},     {0x20, 0x40},   {0x80, 0x24F},    {0x370, 0x3FF},
        {0x400, 0x4FF},   {0x530, 0x58F}, {0x2000, 0x206F}, {0x3000, 0x9FFF},
        {0xD700, 0xFFFF}, {0, 0xFFFF},    {0xDF, 0xDF},     {0xB5, 0xB7}};
    std::u16string text;
    const std::size_t scripts = 1 + random() % 3;
    const std::size_t size = random() % 300;
    while (text.size() < size) {
        const auto [first, last] = ranges[(random() % scripts * 5 + size) % std::size(ranges)];
        for (auto run = random() % 80; run-- > 0;) {
            text += static_cast<char16_t>(first + random() % (last - first + 1u));
        }
    }
    return text;
}

TEST(Folding, ByBlocksIsTheSameAsPlainly) {
    if (!HasAvx2()) {
        GTEST_SKIP() << "no processor for the vector form";
    }
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 20000; ++i) {
        const std::u16string text = RandomText(random);
        for (const Fold fold : {Fold::Upper, Fold::Lower, Fold::DeAccent, Fold::DeAccentUpper}) {
            // Of exactly the promised size, so that a sanitizer sees what is written beyond.
            std::vector<char16_t> plain(text.size());
            std::vector<char16_t> blocks(text.size());
            const std::size_t done = FoldPrefixPlainly(fold, text, plain.data());
            ASSERT_EQ(FoldPrefixByBlocks(fold, text, blocks.data()), done);
            plain.resize(done);
            blocks.resize(done);
            ASSERT_EQ(blocks, plain);
        }
    }
}

}  // namespace
}  // namespace generalutilities
