// Which units of a text stand for themselves, 16 at a time.

#include "extview/rtf_escape.h"
#include "platform/cpu.h"

#ifdef GENERALUTILITIES_AVX2

#include "text/vectors_avx2.h"

#include <bit>

namespace generalutilities::rtf {
namespace {

constexpr std::size_t HalfBlock = BlockSize / 2;

/// All bits of the units that stand for themselves.
AVX2 inline __m256i Plain(__m256i half) {
    const __m256i braces =
        _mm256_or_si256(_mm256_cmpeq_epi16(half, All(u'{')), _mm256_cmpeq_epi16(half, All(u'}')));
    const __m256i reserved = _mm256_or_si256(braces, _mm256_cmpeq_epi16(half, All(u'\\')));
    return _mm256_andnot_si256(reserved, InRange(half, 0x20, 0x7F));
}

AVX2 std::size_t PlainRun(const char16_t* units, std::size_t count) {
    std::size_t done = 0;
    for (; done + HalfBlock <= count; done += HalfBlock) {
        const __m256i half = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units + done));
        const auto others = ~static_cast<std::uint32_t>(_mm256_movemask_epi8(Plain(half)));
        if (others != 0) {
            return done + static_cast<std::size_t>(std::countr_zero(others)) / 2;
        }
    }
    return done + PlainRunUnitByUnit({units + done, count - done});
}

AVX2 std::uint32_t FindEscapes(const char16_t* units) {
    const Block block = Load(units);
    // Packing works on each half of a register, hence the quarters change places.
    const __m256i plain = _mm256_permute4x64_epi64(
        _mm256_packs_epi16(Plain(block.low), Plain(block.high)), 0b11'01'10'00);
    return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(plain));
}

}  // namespace

std::size_t PlainRunByBlocks(std::u16string_view text) noexcept {
    return PlainRun(text.data(), text.size());
}

std::uint32_t FindEscapesByBlocks(const char16_t* block) noexcept {
    static_assert(EscapeBlock == BlockSize);
    return FindEscapes(block);
}

}  // namespace generalutilities::rtf

#else

namespace generalutilities::rtf {

std::size_t PlainRunByBlocks(std::u16string_view text) noexcept {
    return PlainRunUnitByUnit(text);
}

std::uint32_t FindEscapesByBlocks(const char16_t* block) noexcept {
    return FindEscapesUnitByUnit(block);
}

}  // namespace generalutilities::rtf

#endif
