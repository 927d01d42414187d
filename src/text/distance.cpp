#include <generalutilities/text/distance.h>

#include "text/char_tables.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace generalutilities {
namespace {

/// What replacing one code unit by another costs.
double ReplacementCost(char16_t one, char16_t other, double casePenalty) {
    if (one == other) {
        return 0.0;
    }
    return LowerCase(one) == LowerCase(other) ? casePenalty : 1.0;
}

}  // namespace

double EditDistance(std::u16string_view first, std::u16string_view second, double casePenalty) {
    if (first.size() > second.size()) {
        std::swap(first, second);
    }
    // row[j] is the distance of the first j units of `first` from the units of `second` that are
    // done.
    std::vector<double> row(first.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j) {
        row[j] = static_cast<double>(j);
    }
    for (const char16_t unit : second) {
        double diagonal = row[0];
        row[0] += 1.0;
        for (std::size_t j = 0; j < first.size(); ++j) {
            double cost = diagonal + ReplacementCost(first[j], unit, casePenalty);
            diagonal = row[j + 1];
            const double around = std::min(row[j], diagonal) + 1.0;
            row[j + 1] = cost < around ? cost : around;  // false for what is not a number
        }
    }
    return row.back();
}

}  // namespace generalutilities
