// Where a change of case costs 1 or nothing, the distance is a count of edits, of the strings
// themselves or of their small letters (edit_count.h). For other penalties the two counts say a
// lot:
//
// - Adding doubles and taking the least never turns an order round, so a higher penalty never gives
//   a lower distance. Where both counts agree, so do all distances between them. Above 1 they agree
//   too, since a way with a change of case would be shorter by one at penalty 0.
// - As a function of the penalty the distance is the least of straight lines, one for each way, so
//   it lies above the line through the two counts between them, and below it behind them.
// - A way that leaves the diagonal by k units costs at least k. So only the cells of a band decide,
//   whose width follows from a bound on the distance; when the result keeps the bound, it is exact.
//
// Common beginnings and ends are left out, which is exact to the last bit as well: keeping them
// costs nothing, and whatever else a way does with them costs no less in any order of adding. None
// of this holds below zero, where the band is the whole matrix.

#include "platform/cpu.h"
#include "text/distance_forms.h"
#include "text/edit_count.h"
#include "text/flat_tables.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#ifdef GENERALUTILITIES_AVX2
#include <immintrin.h>
#endif

namespace generalutilities {
namespace {

std::u16string SmallLetters(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& unit : result) {
        unit = flat::Lower[unit];
    }
    return result;
}

/// The cells of one anti-diagonal in a band, in order: each goes one unit forward in `ahead` and
/// one backward in the other string, which is turned round so that both are read forward.
struct Cells {
    const char16_t* ahead;
    const char16_t* aheadSmall;
    const char16_t* back;
    const char16_t* backSmall;
    const double* beside;  ///< cell i has the neighbours beside[i] and beside[i + 1]
    double* own;           ///< cell i, with what stands diagonally before it
    std::size_t count;
    double casePenalty;
};

void ComputePlainly(const Cells& cells, std::size_t i) {
    for (; i < cells.count; ++i) {
        const double cost = cells.ahead[i] == cells.back[i]             ? 0.0
                            : cells.aheadSmall[i] == cells.backSmall[i] ? cells.casePenalty
                                                                        : 1.0;
        cells.own[i] =
            std::min(std::min(cells.beside[i], cells.beside[i + 1]) + 1.0, cells.own[i] + cost);
    }
}

#ifdef GENERALUTILITIES_AVX2

GENERALUTILITIES_AVX2 inline __m256d WhereEqual(const char16_t* one, const char16_t* other) {
    const __m128i equal = _mm_cmpeq_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(one)),
                                          _mm_loadl_epi64(reinterpret_cast<const __m128i*>(other)));
    return _mm256_castsi256_pd(_mm256_cvtepi16_epi64(equal));
}

GENERALUTILITIES_AVX2 void ComputeByVectors(const Cells& cells) {
    constexpr std::size_t Lanes = 4;
    const __m256d one = _mm256_set1_pd(1.0);
    const __m256d casePenalty = _mm256_set1_pd(cells.casePenalty);
    std::size_t i = 0;
    for (; i + Lanes <= cells.count; i += Lanes) {
        const __m256d cost = _mm256_andnot_pd(
            WhereEqual(cells.ahead + i, cells.back + i),
            _mm256_blendv_pd(one, casePenalty,
                             WhereEqual(cells.aheadSmall + i, cells.backSmall + i)));
        const __m256d around = _mm256_add_pd(
            _mm256_min_pd(_mm256_loadu_pd(cells.beside + i), _mm256_loadu_pd(cells.beside + i + 1)),
            one);
        _mm256_storeu_pd(
            cells.own + i,
            _mm256_min_pd(around, _mm256_add_pd(_mm256_loadu_pd(cells.own + i), cost)));
    }
    ComputePlainly(cells, i);
}

#endif

/// The classic matrix of doubles in a band around its diagonal, anti-diagonal by anti-diagonal.
class Band {
  public:
    /// `rows` has no more units than `columns`.
    Band(std::u16string_view rows, std::u16string_view columns, double penalty, bool useVectors)
        : ahead(columns),
          aheadSmall(SmallLetters(columns)),
          back(rows.rbegin(), rows.rend()),
          backSmall(SmallLetters(back)),
          casePenalty(penalty),
          vectors(useVectors) {}

    /// The distance over all ways that leave the diagonal by no more than `width` beyond what the
    /// lengths ask for, to either side.
    double Distance(std::size_t width) const {
        const auto rows = static_cast<std::ptrdiff_t>(back.size());
        const auto columns = static_cast<std::ptrdiff_t>(ahead.size());
        const auto least = -std::min(static_cast<std::ptrdiff_t>(width), rows);
        const auto most = columns - rows - least;
        // A diagonal is column minus row. Even and odd ones take turns; each has its latest cell at
        // (diagonal - least) / 2 + 1 in the values of its kind, between two that stay infinite.
        const auto slots = static_cast<std::size_t>((most - least) / 2 + 3);
        std::vector<double> values[2];
        values[0].assign(slots, std::numeric_limits<double>::infinity());
        values[1] = values[0];
        const auto kind = [&](std::ptrdiff_t diagonal) -> std::vector<double>& {
            return values[(diagonal - least) % 2];
        };
        const auto slot = [&](std::ptrdiff_t diagonal) {
            return static_cast<std::size_t>((diagonal - least) / 2 + 1);
        };
        kind(0)[slot(0)] = 0.0;
        for (std::ptrdiff_t sum = 1; sum <= rows + columns; ++sum) {
            // Row and column are both between 1 and their last.
            std::ptrdiff_t from = std::max({least, sum - 2 * rows, 2 - sum});
            std::ptrdiff_t to = std::min({most, sum - 2, 2 * columns - sum});
            from += (sum - from) & 1;
            to -= (sum - to) & 1;
            if (from <= to) {
                const auto column = static_cast<std::size_t>((sum + from) / 2 - 1);
                const auto row = static_cast<std::size_t>(rows - (sum - from) / 2);
                const bool odd = (from - least) % 2 != 0;
                const Cells cells{ahead.data() + column,
                                  aheadSmall.data() + column,
                                  back.data() + row,
                                  backSmall.data() + row,
                                  values[odd ? 0 : 1].data() + slot(from) - (odd ? 0 : 1),
                                  values[odd ? 1 : 0].data() + slot(from),
                                  static_cast<std::size_t>((to - from) / 2 + 1),
                                  casePenalty};
                Compute(cells);
            }
            if (sum <= rows && -sum >= least) {
                kind(-sum)[slot(-sum)] = static_cast<double>(sum);
            }
            if (sum <= columns && sum <= most) {
                kind(sum)[slot(sum)] = static_cast<double>(sum);
            }
        }
        return kind(columns - rows)[slot(columns - rows)];
    }

  private:
    void Compute(const Cells& cells) const {
#ifdef GENERALUTILITIES_AVX2
        if (vectors) {
            return ComputeByVectors(cells);
        }
#endif
        ComputePlainly(cells, 0);
    }

    std::u16string ahead;
    std::u16string aheadSmall;
    std::u16string back;
    std::u16string backSmall;
    double casePenalty;
    [[maybe_unused]] bool vectors;
};

/// The distance of strings whose counts of edits are known, the case-blind one too.
double BandDistance(std::u16string_view shorter, std::u16string_view longer, double casePenalty,
                    std::size_t blindCount, std::size_t count, bool vectors) {
    const Band band(shorter, longer, casePenalty, vectors);
    const auto surplus = static_cast<double>(longer.size() - shorter.size());
    const auto widthFor = [&](double bound) {
        return static_cast<std::size_t>(std::max(bound - surplus, 0.0) / 2);
    };
    const double line =
        static_cast<double>(blindCount) + static_cast<double>(count - blindCount) * casePenalty;
    if (casePenalty < 1) {
        // No less than the line, and seldom much more; never more than the count.
        const double likely = line + 4 + line / 8;
        if (likely < static_cast<double>(count)) {
            const double distance = band.Distance(widthFor(likely));
            if (distance <= likely) {
                return distance;
            }
        }
        return band.Distance(widthFor(static_cast<double>(count)));
    }
    return band.Distance(widthFor(line + 1));  // no more than the line, but for rounding
}

void RemoveCommonEnds(std::u16string_view& one, std::u16string_view& other) {
    const auto begin = std::ranges::mismatch(one, other);
    const auto length = static_cast<std::size_t>(begin.in1 - one.begin());
    one.remove_prefix(length);
    other.remove_prefix(length);
    while (!one.empty() && !other.empty() && one.back() == other.back()) {
        one.remove_suffix(1);
        other.remove_suffix(1);
    }
}

}  // namespace

double EditDistance(std::u16string_view first, std::u16string_view second, double casePenalty,
                    bool vectors) {
    if (first.size() > second.size()) {
        std::swap(first, second);
    }
    if (casePenalty < 0) {
        return Band(first, second, casePenalty, vectors).Distance(first.size());
    }
    if (!(casePenalty < 2)) {
        casePenalty = 2;  // deleting and inserting
    }
    RemoveCommonEnds(first, second);
    if (first.empty()) {
        return static_cast<double>(second.size());
    }
    if (casePenalty == 1) {
        return static_cast<double>(EditCount(first, second, vectors));
    }
    const std::size_t blindCount = EditCount(SmallLetters(first), SmallLetters(second), vectors);
    if (casePenalty == 0) {
        return static_cast<double>(blindCount);
    }
    const std::size_t count = EditCount(first, second, vectors);
    return count == blindCount
               ? static_cast<double>(count)
               : BandDistance(first, second, casePenalty, blindCount, count, vectors);
}

double EditDistance(std::u16string_view first, std::u16string_view second, double casePenalty) {
    return EditDistance(first, second, casePenalty, HasAvx2());
}

}  // namespace generalutilities
