#include <generalutilities/text/digits.h>

#include "case_table.h"

#include <numeric>

namespace generalutilities {
namespace {

/// The whole world of code units, at every alignment of a vector.
TEST(FoldDigits, GivesEachUnitItsDigit) {
    std::u16string units(0x10000, u'\0');
    std::iota(units.begin(), units.end(), u'\0');
    std::u16string digits = units;
    std::u16string all = units;
    for (const auto& row : CaseTable("digits.tsv")) {
        const bool isDigit = row[0].size() == 1;
        for (const char16_t unit : row[1]) {
            all[unit] = isDigit ? row[0][0] : u'0';
            digits[unit] = isDigit ? row[0][0] : unit;
        }
    }
    EXPECT_EQ(FoldDigits(units, false), digits);
    for (std::size_t i = 0; i < units.size(); ++i) {
        for (const std::size_t length : {1u, 17u, 70u}) {
            const auto part = std::u16string_view(units).substr(i, length);
            ASSERT_EQ(FoldDigits(part), all.substr(i, part.size())) << i;
        }
    }
}

}  // namespace
}  // namespace generalutilities
