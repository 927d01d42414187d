#include <generalutilities/extview/source_key.h>

#include "case_table.h"

namespace generalutilities {
namespace {

constexpr std::int32_t English = 1033;

TEST(MakeSourceKey, KeepsWordsAndWhatStandsBetween) {
    for (const auto& row : CaseTable("source_keys.tsv")) {
        EXPECT_EQ(MakeSourceKey(row[0], Number(row[2])), row[1]);
    }
}

TEST(CompareForm, DropsNumbersAndOuterBlanksAlone) {
    EXPECT_EQ(CompareForm(u"  Page 12 of  34 ", English), u"Page  of");
    EXPECT_EQ(CompareForm(u"a, {1} b.", English), u"a, {1} b.");
    EXPECT_EQ(CompareForm(u"1,000.50", English), u"");
    EXPECT_EQ(CompareForm(u"", English), u"");
}

}  // namespace
}  // namespace generalutilities
