#pragma once

#include "platform/cpu.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#ifdef GENERALUTILITIES_AVX2
#include <immintrin.h>
#endif

/// The inner loop of search: places of a text where two units of what is sought stand at their
/// distances, sixteen places at a time. What is found is a candidate, no more.
namespace generalutilities {

/// Two units of what is sought and the units of a text that may stand in their places: as many
/// alternatives of each as a scan looks at, with repetitions where there are fewer.
struct UnitPair {
    static constexpr std::size_t Most = 3;
    struct Unit {
        std::size_t offset = 0;  ///< from the beginning of a match
        char16_t alternatives[Most] = {};
    } units[2];
};

/// Calls `stop(place)` for each candidate from `first` to `last` - 1 in ascending order, until it
/// says true. The units at `last` - 1 plus the offsets must lie in the text. With `UntilZero` the
/// scan also ends at a place where the first unit of the pair would meet U+0000. Gives whether it
/// ended before `last`.
template <std::size_t Alternatives, bool UntilZero, class Stop>
bool ScanPairPlainly(const char16_t* text, std::size_t first, std::size_t last,
                     const UnitPair& pair, Stop& stop) {
    const auto holds = [](const UnitPair::Unit& unit, const char16_t* place) {
        bool any = false;
        for (std::size_t i = 0; i < Alternatives; ++i) {
            any |= place[unit.offset] == unit.alternatives[i];
        }
        return any;
    };
    for (; first < last; ++first) {
        if (UntilZero && text[first + pair.units[0].offset] == 0) {
            return true;
        }
        if (holds(pair.units[0], text + first) && holds(pair.units[1], text + first) &&
            stop(first)) {
            return true;
        }
    }
    return false;
}

#ifdef GENERALUTILITIES_AVX2

namespace pair_scan {

GENERALUTILITIES_AVX2 inline __m256i Load(const char16_t* units) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units));
}

GENERALUTILITIES_AVX2 inline bool HoldsZero(__m256i units) {
    const __m256i zeros = _mm256_cmpeq_epi16(units, _mm256_setzero_si256());
    return _mm256_testz_si256(zeros, zeros) == 0;
}

/// The alternatives of a unit, each all over a register. Copies live in registers as long as
/// nobody takes their address.
template <std::size_t Alternatives>
struct Alternates {
    __m256i first;
    __m256i second;
    __m256i third;

    GENERALUTILITIES_AVX2 static Alternates Of(const UnitPair::Unit& unit) {
        return {_mm256_set1_epi16(static_cast<std::int16_t>(unit.alternatives[0])),
                _mm256_set1_epi16(static_cast<std::int16_t>(unit.alternatives[1])),
                _mm256_set1_epi16(static_cast<std::int16_t>(unit.alternatives[2]))};
    }

    /// All ones where one of them stands.
    GENERALUTILITIES_AVX2 __m256i In(__m256i units) const {
        __m256i holds = _mm256_cmpeq_epi16(units, first);
        if constexpr (Alternatives > 1) {
            holds = _mm256_or_si256(holds, _mm256_cmpeq_epi16(units, second));
        }
        if constexpr (Alternatives > 2) {
            holds = _mm256_or_si256(holds, _mm256_cmpeq_epi16(units, third));
        }
        return holds;
    }
};

/// Hands the candidates of a block on. True when the scan ends.
template <class Stop>
GENERALUTILITIES_AVX2 inline bool Visit(std::uint32_t twoBitsEach, std::size_t place, Stop& stop) {
    for (; twoBitsEach != 0; twoBitsEach &= twoBitsEach - 1, twoBitsEach &= twoBitsEach - 1) {
        if (stop(place + static_cast<std::size_t>(std::countr_zero(twoBitsEach)) / 2)) {
            return true;
        }
    }
    return false;
}

}  // namespace pair_scan

/// The same, sixteen places in a register. Where a zero is near, and in a short text, the plain
/// form takes over.
template <std::size_t Alternatives, bool UntilZero, class Stop>
GENERALUTILITIES_AVX2 void ScanPairByBlocks(const char16_t* text, std::size_t first,
                                            std::size_t last, const UnitPair& pair, Stop& stop) {
    using namespace pair_scan;
    constexpr std::size_t Block = 16;
    if (last - first < Block) {
        ScanPairPlainly<Alternatives, UntilZero>(text, first, last, pair, stop);
        return;
    }
    const char16_t* const one = text + pair.units[0].offset;
    const char16_t* const other = text + pair.units[1].offset;
    const auto ones = Alternates<Alternatives>::Of(pair.units[0]);
    const auto others = Alternates<Alternatives>::Of(pair.units[1]);
    if (last - first > 1024) {  // long enough for loads at even addresses to pay
        const std::size_t odd = reinterpret_cast<std::uintptr_t>(one + first) % 32 / 2;
        const std::size_t even = first + (Block - odd) % Block;
        if (ScanPairPlainly<Alternatives, UntilZero>(text, first, even, pair, stop)) {
            return;
        }
        first = even;
    }
    for (; last - first >= 4 * Block; first += 4 * Block) {
        const __m256i units0 = Load(one + first);
        const __m256i units1 = Load(one + first + Block);
        const __m256i units2 = Load(one + first + 2 * Block);
        const __m256i units3 = Load(one + first + 3 * Block);
        const __m256i found0 = _mm256_and_si256(ones.In(units0), others.In(Load(other + first)));
        const __m256i found1 =
            _mm256_and_si256(ones.In(units1), others.In(Load(other + first + Block)));
        const __m256i found2 =
            _mm256_and_si256(ones.In(units2), others.In(Load(other + first + 2 * Block)));
        const __m256i found3 =
            _mm256_and_si256(ones.In(units3), others.In(Load(other + first + 3 * Block)));
        __m256i any =
            _mm256_or_si256(_mm256_or_si256(found0, found1), _mm256_or_si256(found2, found3));
        if constexpr (UntilZero) {
            const __m256i least = _mm256_min_epu16(_mm256_min_epu16(units0, units1),
                                                   _mm256_min_epu16(units2, units3));
            any = _mm256_or_si256(any, _mm256_cmpeq_epi16(least, _mm256_setzero_si256()));
            if (_mm256_testz_si256(any, any) != 0) {
                continue;
            }
            if (HoldsZero(least)) {
                ScanPairPlainly<Alternatives, UntilZero>(text, first, last, pair, stop);
                return;
            }
        } else if (_mm256_testz_si256(any, any) != 0) {
            continue;
        }
        const __m256i blocks[4] = {found0, found1, found2, found3};
        for (std::size_t i = 0; i < 4; ++i) {
            if (Visit(static_cast<std::uint32_t>(_mm256_movemask_epi8(blocks[i])),
                      first + i * Block, stop)) {
                return;
            }
        }
    }
    // Block by block; the last one is moved back to the end, without the places seen before.
    for (std::size_t seen = 0; first < last; first += Block) {
        if (last - first < Block) {
            seen = 2 * (Block - (last - first));
            first = last - Block;
        }
        const __m256i units = Load(one + first);
        if (UntilZero && HoldsZero(units)) {
            ScanPairPlainly<Alternatives, UntilZero>(text, first + seen / 2, last, pair, stop);
            return;
        }
        const __m256i found = _mm256_and_si256(ones.In(units), others.In(Load(other + first)));
        if (Visit(static_cast<std::uint32_t>(_mm256_movemask_epi8(found)) >> seen << seen, first,
                  stop)) {
            return;
        }
    }
}

#endif

template <std::size_t Alternatives, bool UntilZero, class Stop>
void ScanPair(const char16_t* text, std::size_t first, std::size_t last, const UnitPair& pair,
              [[maybe_unused]] bool vectors, Stop& stop) {
#ifdef GENERALUTILITIES_AVX2
    if (vectors) {
        return ScanPairByBlocks<Alternatives, UntilZero>(text, first, last, pair, stop);
    }
#endif
    ScanPairPlainly<Alternatives, UntilZero>(text, first, last, pair, stop);
}

}  // namespace generalutilities
