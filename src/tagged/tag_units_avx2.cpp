#include "platform/cpu.h"

#ifdef GENERALUTILITIES_AVX2

#include "tagged/tag_units.h"

#include <immintrin.h>

namespace generalutilities {
namespace {

/// 32 units as bytes. Whatever is no byte becomes 255, or 0 with its uppermost bit set.
GENERALUTILITIES_AVX2 inline __m256i AsBytes(const __m256i* units) {
    const __m256i packed =
        _mm256_packus_epi16(_mm256_loadu_si256(units), _mm256_loadu_si256(units + 1));
    return _mm256_permute4x64_epi64(packed, 0xD8);  // packing interleaves halves
}

GENERALUTILITIES_AVX2 inline std::uint64_t PlacesOf(char unit, __m256i first, __m256i second) {
    const __m256i wanted = _mm256_set1_epi8(unit);
    const auto bits = [wanted](__m256i bytes) GENERALUTILITIES_AVX2 {
        return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, wanted)));
    };
    return bits(first) | std::uint64_t{bits(second)} << 32;
}

}  // namespace

GENERALUTILITIES_AVX2 TagPlaces FindTagPlacesAvx2(const char16_t* block) {
    const auto* const units = reinterpret_cast<const __m256i*>(block);
    const __m256i first = AsBytes(units);
    const __m256i second = AsBytes(units + 2);
    return {PlacesOf('<', first, second), PlacesOf('>', first, second),
            PlacesOf(' ', first, second)};
}

}  // namespace generalutilities

#endif
