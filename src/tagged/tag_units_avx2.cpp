#include "platform/cpu.h"

#ifdef GENERALUTILITIES_AVX2

#include "tagged/tag_units.h"

#include <immintrin.h>

namespace generalutilities {
namespace {

/// Where a unit stands in twice 16 of them.
GENERALUTILITIES_AVX2 inline std::uint64_t PlacesOf(char16_t unit, __m256i first, __m256i second) {
    const __m256i wanted = _mm256_set1_epi16(static_cast<short>(unit));
    const __m256i packed =
        _mm256_packs_epi16(_mm256_cmpeq_epi16(first, wanted), _mm256_cmpeq_epi16(second, wanted));
    const __m256i inOrder = _mm256_permute4x64_epi64(packed, 0xD8);  // packing interleaves halves
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(inOrder));
}

}  // namespace

GENERALUTILITIES_AVX2 TagPlaces FindTagPlacesAvx2(const char16_t* block) {
    const auto* const units = reinterpret_cast<const __m256i*>(block);
    const __m256i a = _mm256_loadu_si256(units), b = _mm256_loadu_si256(units + 1),
                  c = _mm256_loadu_si256(units + 2), d = _mm256_loadu_si256(units + 3);
    return {PlacesOf(u'<', a, b) | PlacesOf(u'<', c, d) << 32,
            PlacesOf(u'>', a, b) | PlacesOf(u'>', c, d) << 32,
            PlacesOf(u' ', a, b) | PlacesOf(u' ', c, d) << 32};
}

}  // namespace generalutilities

#endif
