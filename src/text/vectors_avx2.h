#pragma once

#include "platform/cpu.h"

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

/// What the vector forms share; only for files that are nothing without GENERALUTILITIES_AVX2.
#define AVX2 GENERALUTILITIES_AVX2

namespace generalutilities {

inline constexpr std::size_t BlockSize = 32;

/// 32 code units, in two halves.
struct Block {
    __m256i low;
    __m256i high;
};

AVX2 inline Block Load(const char16_t* units) {
    return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(units)),
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units + 16))};
}

AVX2 inline void Store(Block block, char16_t* out) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), block.low);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 16), block.high);
}

/// 16 times the same unit.
AVX2 inline __m256i All(int unit) {
    return _mm256_set1_epi16(static_cast<short>(unit));
}

/// All bits of the units from `first` to `last`, none of the others.
AVX2 inline __m256i InRange(__m256i units, char16_t first, char16_t last) {
    const __m256i offset = _mm256_sub_epi16(units, All(first));
    return _mm256_cmpeq_epi16(_mm256_min_epu16(offset, All(last - first)), offset);
}

AVX2 inline bool IsAscii(Block block) {
    return _mm256_testz_si256(_mm256_or_si256(block.low, block.high), All(~0x7F)) != 0;
}

/// The uppermost bit of each byte, so two for each unit of a comparison's result.
AVX2 inline std::uint64_t Bits(Block block) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(block.low)) |
           std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(block.high))} << 32;
}

/// A table of 128 bytes in registers. (Written out, since compilers keep no array in registers
/// whose loop they leave a loop.)
struct ByteTable {
    __m256i part0, part1, part2, part3, part4, part5, part6, part7;
};

AVX2 inline __m256i LoadTwice(const std::uint8_t* bytes) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
}

AVX2 inline ByteTable LoadTable(const void* table) {
    const auto* bytes = static_cast<const std::uint8_t*>(table);
    return {LoadTwice(bytes),      LoadTwice(bytes + 16), LoadTwice(bytes + 32),
            LoadTwice(bytes + 48), LoadTwice(bytes + 64), LoadTwice(bytes + 80),
            LoadTwice(bytes + 96), LoadTwice(bytes + 112)};
}

/// The entries of two parts for the lowest four bits of the numbers; the uppermost bit of `second`
/// chooses the part.
AVX2 inline __m256i LookUpInTwo(__m256i part0, __m256i part1, __m256i numbers, __m256i second) {
    return _mm256_blendv_epi8(_mm256_shuffle_epi8(part0, numbers),
                              _mm256_shuffle_epi8(part1, numbers), second);
}

/// The table's entries for 32 numbers below 128.
AVX2 inline __m256i LookUp(const ByteTable& table, __m256i numbers) {
    const __m256i bit4 = _mm256_slli_epi16(numbers, 3);
    const __m256i bit5 = _mm256_slli_epi16(numbers, 2);
    const __m256i bit6 = _mm256_slli_epi16(numbers, 1);
    const __m256i lower =
        _mm256_blendv_epi8(LookUpInTwo(table.part0, table.part1, numbers, bit4),
                           LookUpInTwo(table.part2, table.part3, numbers, bit4), bit5);
    const __m256i upper =
        _mm256_blendv_epi8(LookUpInTwo(table.part4, table.part5, numbers, bit4),
                           LookUpInTwo(table.part6, table.part7, numbers, bit4), bit5);
    return _mm256_blendv_epi8(lower, upper, bit6);
}

}  // namespace generalutilities
