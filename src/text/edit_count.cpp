// In the classic matrix of edit distances neighbouring cells differ by -1, 0 or 1. So a column of
// 64 cells is two numbers of 64 bits: in which rows the value grows against the row above (`plus`),
// and in which it shrinks (`minus`). One step makes the column of the next unit of the text out of
// the rows that match it, with a few additions and logical operations (Myers 1999; Hyyrö 2003).
//
// A pattern of more than two words is cut into strips of four words, 256 rows. What crosses the
// lower border of a strip, -1, 0 or 1 in each column, is kept for the next strip. Within a strip
// word k works one column behind word k - 1, so that four words make a step at once in a vector
// register.

#include "text/edit_count.h"

#include "platform/cpu.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#ifdef GENERALUTILITIES_AVX2
#include <immintrin.h>
#endif

namespace generalutilities {
namespace {

constexpr std::size_t WordRows = 64;
constexpr std::size_t StripWords = 4;
constexpr std::size_t StripRows = StripWords * WordRows;

/// Vertical differences of 64 rows of a column.
struct Column {
    std::uint64_t plus = ~std::uint64_t{0};
    std::uint64_t minus = 0;

    /// A horizontal difference: at most one of the bits is set.
    struct Difference {
        std::uint64_t plus;
        std::uint64_t minus;
    };

    /// Goes on to the next column. `matches` are the rows that match its unit, `above` is the
    /// difference above the first row; gives that of the last row.
    Difference Step(std::uint64_t matches, Difference above) {
        const std::uint64_t vertical = matches | minus;
        matches |= above.minus;
        const std::uint64_t horizontal = (((matches & plus) + plus) ^ plus) | matches;
        std::uint64_t grows = minus | ~(horizontal | plus);
        std::uint64_t shrinks = plus & horizontal;
        const Difference below{grows >> 63, shrinks >> 63};
        grows = grows << 1 | above.plus;
        shrinks = shrinks << 1 | above.minus;
        plus = shrinks | ~(vertical | grows);
        minus = grows & vertical;
        return below;
    }

    /// The last row's value minus that of the row above the first.
    std::int64_t Height(std::size_t rows) const {
        const std::uint64_t used =
            rows >= WordRows ? ~std::uint64_t{0} : (std::uint64_t{1} << rows) - 1;
        return std::popcount(plus & used) - std::popcount(minus & used);
    }
};

/// For patterns of few words: compares all of their units with one, without any table.
template <std::size_t Words>
class ShortPattern {
  public:
    explicit ShortPattern(std::u16string_view pattern) : size(pattern.size()) {
        std::copy(pattern.begin(), pattern.end(), units);
    }

    /// One bit for each unit of a word of the pattern that is equal.
    std::uint64_t Matches(char16_t unit, std::size_t word) const {
        const char16_t* const first = units + word * WordRows;
        const std::size_t count = std::min(size - word * WordRows, WordRows);
        std::uint64_t matches = 0;
#ifdef __SSE2__
        const __m128i wanted = _mm_set1_epi16(static_cast<std::int16_t>(unit));
        for (std::size_t i = 0; i < count; i += 16) {
            const auto* const block = reinterpret_cast<const __m128i*>(first + i);
            const __m128i equal =
                _mm_packs_epi16(_mm_cmpeq_epi16(_mm_load_si128(block), wanted),
                                _mm_cmpeq_epi16(_mm_load_si128(block + 1), wanted));
            matches |= std::uint64_t{static_cast<std::uint16_t>(_mm_movemask_epi8(equal))} << i;
        }
#else
        for (std::size_t i = 0; i < count; ++i) {
            matches |= std::uint64_t{first[i] == unit} << i;
        }
#endif
        return matches;
    }

#ifdef GENERALUTILITIES_AVX2
    GENERALUTILITIES_AVX2 std::uint64_t MatchesByVectors(char16_t unit, std::size_t word) const {
        constexpr std::size_t HalfRows = WordRows / 2;
        const __m256i wanted = _mm256_set1_epi16(static_cast<std::int16_t>(unit));
        const auto half = [&](const char16_t* first) GENERALUTILITIES_AVX2 {
            const auto* const block = reinterpret_cast<const __m256i*>(first);
            const __m256i equal =
                _mm256_packs_epi16(_mm256_cmpeq_epi16(_mm256_load_si256(block), wanted),
                                   _mm256_cmpeq_epi16(_mm256_load_si256(block + 1), wanted));
            // Packing works on each half of a register, hence the quarters change places.
            return std::uint64_t{static_cast<std::uint32_t>(
                _mm256_movemask_epi8(_mm256_permute4x64_epi64(equal, 0b11'01'10'00)))};
        };
        const char16_t* const first = units + word * WordRows;
        return size - word * WordRows > HalfRows ? half(first) | half(first + HalfRows) << HalfRows
                                                 : half(first);
    }
#endif

  private:
    std::size_t size;
    // What lies behind the pattern counts as rows below it, which nothing reads.
    alignas(32) char16_t units[Words * WordRows] = {};
};

template <std::size_t Words, bool ByVectors>
[[gnu::always_inline]] inline std::size_t CountColumns(std::u16string_view pattern,
                                                       std::u16string_view text) {
    const ShortPattern<Words> rows(pattern);
    Column columns[Words];
    for (const char16_t unit : text) {
        Column::Difference border{1, 0};
        for (std::size_t k = 0; k < Words; ++k) {
            std::uint64_t matches;
            if constexpr (ByVectors) {
                matches = rows.MatchesByVectors(unit, k);
            } else {
                matches = rows.Matches(unit, k);
            }
            border = columns[k].Step(matches, border);
        }
    }
    auto distance = static_cast<std::int64_t>(text.size());
    for (std::size_t k = 0; k < Words; ++k) {
        distance += columns[k].Height(pattern.size() - k * WordRows);
    }
    return static_cast<std::size_t>(distance);
}

#ifdef GENERALUTILITIES_AVX2
template <std::size_t Words>
GENERALUTILITIES_AVX2 std::size_t CountColumnsByVectors(std::u16string_view pattern,
                                                        std::u16string_view text) {
    return CountColumns<Words, true>(pattern, text);
}
#endif

template <std::size_t Words>
std::size_t CountShort(std::u16string_view pattern, std::u16string_view text,
                       [[maybe_unused]] bool vectors) {
#ifdef GENERALUTILITIES_AVX2
    if (vectors) {
        return CountColumnsByVectors<Words>(pattern, text);
    }
#endif
    return CountColumns<Words, false>(pattern, text);
}

/// Numbers from 1 on for the units of a pattern, 0 for all others. Pages of 256 units, so that the
/// room follows the scripts of the pattern.
class UnitNumbers {
  public:
    explicit UnitNumbers(std::u16string_view pattern) {
        std::uint16_t last = 0;
        for (const char16_t unit : pattern) {
            std::uint16_t& page = index[unit >> 8];
            if (page == 0) {
                page = ++last;
            }
        }
        pages.resize(last + std::size_t{1});
        for (const char16_t unit : pattern) {
            std::uint32_t& number = pages[index[unit >> 8]][unit & 0xFF];
            if (number == 0) {
                number = ++count;
            }
        }
    }

    std::uint32_t operator[](char16_t unit) const { return pages[index[unit >> 8]][unit & 0xFF]; }
    std::size_t Count() const { return count; }

  private:
    std::array<std::uint16_t, 256> index{};
    std::vector<std::array<std::uint32_t, 256>> pages;
    std::uint32_t count = 0;
};

/// The rows of a strip that match a unit.
using Rows = std::array<std::uint64_t, StripWords>;

/// One strip over the whole text. `borders` holds for each column the difference above the strip,
/// and then that below it: bit 0 for +1, bit 1 for -1.
using Strip = std::array<Column, StripWords>;

void RunStripPlainly(const std::vector<Rows>& rows, const std::vector<std::uint32_t>& text,
                     std::vector<std::uint8_t>& borders, Strip& strip) {
    for (std::size_t j = 0; j < text.size(); ++j) {
        Column::Difference border{std::uint64_t{borders[j]} & 1, std::uint64_t{borders[j]} >> 1};
        const Rows& matches = rows[text[j]];
        for (std::size_t k = 0; k < StripWords; ++k) {
            border = strip[k].Step(matches[k], border);
        }
        borders[j] = static_cast<std::uint8_t>(border.plus | border.minus << 1);
    }
}

#ifdef GENERALUTILITIES_AVX2

/// How many columns a word is behind the one above it: one more than it need be, so that a step
/// does not wait for the move of the borders from word to word.
constexpr std::size_t Lag = 2;

/// Column for four words at once; see there. Terms are put in such an order that little stands
/// between `plus` of one step and of the next.
struct Columns {
    __m256i plus;
    __m256i minus;
    __m256i abovePlus;
    __m256i aboveMinus;
    __m256i nextPlus;  ///< above in the next step
    __m256i nextMinus;

    /// The differences of the last rows move on by a word, to be those above in the step after the
    /// next. The result is that of the last word, in both bits.
    GENERALUTILITIES_AVX2 int Step(__m256i matches) {
        const __m256i ones = _mm256_set1_epi64x(-1);
        const __m256i notPlus = _mm256_xor_si256(plus, ones);
        const __m256i notVertical = _mm256_andnot_si256(_mm256_or_si256(matches, minus), ones);
        const __m256i minusMoved = _mm256_or_si256(_mm256_slli_epi64(minus, 1), abovePlus);
        matches = _mm256_or_si256(matches, aboveMinus);
        const __m256i sum = _mm256_add_epi64(_mm256_and_si256(matches, plus), plus);
        const __m256i horizontal = _mm256_or_si256(_mm256_xor_si256(sum, plus), matches);
        const __m256i stays = _mm256_andnot_si256(horizontal, notPlus);
        const __m256i shrinks = _mm256_and_si256(plus, horizontal);
        abovePlus = nextPlus;
        nextPlus =
            _mm256_permute4x64_epi64(_mm256_srli_epi64(_mm256_or_si256(minus, stays), 63), 0x93);
        const __m256i growsMoved = _mm256_or_si256(minusMoved, _mm256_slli_epi64(stays, 1));
        const __m256i shrinksMoved = _mm256_or_si256(_mm256_slli_epi64(shrinks, 1), aboveMinus);
        aboveMinus = nextMinus;
        nextMinus = _mm256_permute4x64_epi64(_mm256_srli_epi64(shrinks, 63), 0x93);
        plus = _mm256_or_si256(shrinksMoved, _mm256_andnot_si256(growsMoved, notVertical));
        minus = _mm256_andnot_si256(notVertical, growsMoved);
        return _mm_cvtsi128_si32(
            _mm256_castsi256_si128(_mm256_or_si256(nextPlus, _mm256_slli_epi64(nextMinus, 1))));
    }

    /// Puts the border above the strip in its place.
    GENERALUTILITIES_AVX2 void Enter(unsigned border) {
        abovePlus = _mm256_blend_epi32(
            abovePlus, _mm256_castsi128_si256(_mm_cvtsi32_si128(static_cast<int>(border & 1))), 3);
        aboveMinus = _mm256_blend_epi32(
            aboveMinus, _mm256_castsi128_si256(_mm_cvtsi32_si128(static_cast<int>(border >> 1))),
            3);
    }
};

/// The same as RunStripPlainly.
GENERALUTILITIES_AVX2 void RunStripByVectors(const std::vector<Rows>& allRows,
                                             const std::vector<std::uint32_t>& text,
                                             std::vector<std::uint8_t>& allBorders, Strip& strip) {
    constexpr std::size_t Behind = Lag * (StripWords - 1);  // the last word
    const Rows* const rows = allRows.data();
    const std::uint32_t* const units = text.data();
    std::uint8_t* const borders = allBorders.data();
    const __m256i zero = _mm256_setzero_si256();
    Columns columns{_mm256_set1_epi64x(-1), zero, zero, zero, zero, zero};
    // In step j word k is at column j - k * Lag. In the first and the last steps some words are
    // outside of the text; what they do is taken back.
    const auto edgeStep = [&](std::size_t j) GENERALUTILITIES_AVX2 {
        alignas(32) std::uint64_t matches[StripWords] = {};
        alignas(32) std::int64_t inside[StripWords] = {};
        for (std::size_t k = 0; k < StripWords; ++k) {
            if (j >= k * Lag && j - k * Lag < text.size()) {
                matches[k] = rows[units[j - k * Lag]][k];
                inside[k] = -1;
            }
        }
        columns.Enter(j < text.size() ? borders[j] : 0);
        const __m256i active = _mm256_load_si256(reinterpret_cast<const __m256i*>(inside));
        const __m256i plus = columns.plus;
        const __m256i minus = columns.minus;
        const int below =
            columns.Step(_mm256_load_si256(reinterpret_cast<const __m256i*>(matches)));
        columns.plus = _mm256_blendv_epi8(plus, columns.plus, active);
        columns.minus = _mm256_blendv_epi8(minus, columns.minus, active);
        if (j >= Behind) {
            borders[j - Behind] = static_cast<std::uint8_t>(below);
        }
    };
    std::size_t j = 0;
    for (; j < Behind; ++j) {
        edgeStep(j);
    }
    for (; j < text.size(); ++j) {
        const __m256i matches =
            _mm256_set_epi64x(static_cast<std::int64_t>(rows[units[j - 3 * Lag]][3]),
                              static_cast<std::int64_t>(rows[units[j - 2 * Lag]][2]),
                              static_cast<std::int64_t>(rows[units[j - Lag]][1]),
                              static_cast<std::int64_t>(rows[units[j]][0]));
        columns.Enter(borders[j]);
        borders[j - Behind] = static_cast<std::uint8_t>(columns.Step(matches));
    }
    for (; j < text.size() + Behind; ++j) {
        edgeStep(j);
    }
    alignas(32) std::uint64_t plus[StripWords];
    alignas(32) std::uint64_t minus[StripWords];
    _mm256_store_si256(reinterpret_cast<__m256i*>(plus), columns.plus);
    _mm256_store_si256(reinterpret_cast<__m256i*>(minus), columns.minus);
    for (std::size_t k = 0; k < StripWords; ++k) {
        strip[k] = {plus[k], minus[k]};
    }
}

#endif

std::size_t CountLong(std::u16string_view pattern, std::u16string_view text,
                      [[maybe_unused]] bool vectors) {
    const UnitNumbers numbers(pattern);
    std::vector<std::uint32_t> units(text.size());
    std::ranges::transform(text, units.begin(), [&](char16_t unit) { return numbers[unit]; });
    std::vector<Rows> rows(numbers.Count() + 1);
    std::vector<std::uint8_t> borders(text.size(), 1);
    auto distance = static_cast<std::int64_t>(text.size());
    for (; !pattern.empty(); pattern.remove_prefix(std::min(StripRows, pattern.size()))) {
        const std::u16string_view part = pattern.substr(0, StripRows);
        for (std::size_t i = 0; i < part.size(); ++i) {
            rows[numbers[part[i]]][i / WordRows] |= std::uint64_t{1} << i % WordRows;
        }
        Strip strip;
#ifdef GENERALUTILITIES_AVX2
        if (vectors) {
            RunStripByVectors(rows, units, borders, strip);
        } else
#endif
        {
            RunStripPlainly(rows, units, borders, strip);
        }
        for (std::size_t k = 0; k * WordRows < part.size(); ++k) {
            distance += strip[k].Height(part.size() - k * WordRows);
        }
        for (const char16_t unit : part) {
            rows[numbers[unit]] = {};
        }
    }
    return static_cast<std::size_t>(distance);
}

}  // namespace

std::size_t EditCount(std::u16string_view one, std::u16string_view other, bool vectors) {
    if (one.size() > other.size()) {
        std::swap(one, other);
    }
    if (one.size() <= WordRows) {
        return CountShort<1>(one, other, vectors);
    }
    return one.size() <= 2 * WordRows ? CountShort<2>(one, other, vectors)
                                      : CountLong(one, other, vectors);
}

}  // namespace generalutilities
