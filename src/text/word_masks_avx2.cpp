// The kinds of 32 code units at a time, as bytes whose uppermost bits make the masks. ASCII is
// looked up in registers, everything else in the flat table.

#include "platform/cpu.h"
#include "text/flat_tables.h"
#include "text/word_masks.h"

#ifdef GENERALUTILITIES_AVX2

#include "text/vectors_avx2.h"

namespace generalutilities {
namespace {

/// In the lower half of a register.
AVX2 inline __m128i EightByTable(const char16_t* units) {
    const std::uint8_t* classes = flat::Classes.data();
    __m128i found = _mm_cvtsi32_si128(classes[units[0]]);
    found = _mm_insert_epi8(found, classes[units[1]], 1);
    found = _mm_insert_epi8(found, classes[units[2]], 2);
    found = _mm_insert_epi8(found, classes[units[3]], 3);
    found = _mm_insert_epi8(found, classes[units[4]], 4);
    found = _mm_insert_epi8(found, classes[units[5]], 5);
    found = _mm_insert_epi8(found, classes[units[6]], 6);
    return _mm_insert_epi8(found, classes[units[7]], 7);
}

AVX2 inline __m128i SixteenByTable(const char16_t* units) {
    return _mm_unpacklo_epi64(EightByTable(units), EightByTable(units + 8));
}

AVX2 inline __m256i Kinds(const char16_t* units) {
    const Block block = Load(units);
    if (!IsAscii(block)) {
        return _mm256_setr_m128i(SixteenByTable(units), SixteenByTable(units + 16));
    }
    // Packing works on each half of a register, hence the quarters change places.
    const __m256i bytes =
        _mm256_permute4x64_epi64(_mm256_packus_epi16(block.low, block.high), 0b11'01'10'00);
    return LookUp(LoadTable(flat::Classes.data()), bytes);
}

AVX2 WordMasks Find(const char16_t* units) {
    const __m256i low = Kinds(units);
    const __m256i high = Kinds(units + BlockSize);
    static_assert(flat::KindLetter == 0x80 && flat::KindEastAsian == 0x40 &&
                  flat::KindSpecial == 0x20);
    return {Bits({low, high}), Bits({_mm256_slli_epi16(low, 1), _mm256_slli_epi16(high, 1)}),
            Bits({_mm256_slli_epi16(low, 2), _mm256_slli_epi16(high, 2)})};
}

}  // namespace

WordMasks FindWordMasksByBlocks(const char16_t* units) noexcept {
    return Find(units);
}

}  // namespace generalutilities

#else

namespace generalutilities {

WordMasks FindWordMasksByBlocks(const char16_t* units) noexcept {
    return FindWordMasksPlainly(units);
}

}  // namespace generalutilities

#endif
