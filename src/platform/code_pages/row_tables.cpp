#include "platform/code_pages/row_tables.h"

#include "platform/cpu.h"

#include <algorithm>
#include <bit>

#ifdef GENERALUTILITIES_AVX2
#include <immintrin.h>
#endif

namespace generalutilities::code_pages {

bool Places::Enter(std::size_t index, std::uint16_t places) {
    if (places == Whole) {
        row[index] = WholeRow;
        return true;
    }
    if (places == 0 || nextBit == 0) {
        return false;
    }
    row[index] = nextBit;
    for (std::size_t i = 0; i < 16; ++i) {
        members[i] = static_cast<std::uint8_t>(members[i] | ((places >> i & 1) * nextBit));
    }
    nextBit = static_cast<std::uint8_t>(nextBit << 1);
    return true;
}

ByteRows::ByteRows(const std::array<char16_t, 256>& characters) {
    auto* next = scattered.begin();
    for (std::size_t index = 0; index < 16; ++index) {
        const char16_t* const own = characters.data() + index * 16;
        // Where the row would begin if it is one, by the most frequent answer of its characters.
        std::array<std::uint16_t, 16> found{};
        for (std::size_t i = 0; i < 16; ++i) {
            for (std::size_t k = 0; k < 16; ++k) {
                const bool together =
                    own[k] % 16 == k && own[i] % 16 == i && own[i] - i == own[k] - k;
                found[i] = static_cast<std::uint16_t>(found[i] | (together ? 1U << k : 0));
            }
        }
        const auto best = std::ranges::max_element(
            found, {}, [](std::uint16_t places16) { return std::popcount(places16); });
        const auto member = static_cast<std::size_t>(best - found.begin());
        const int count = std::popcount(*best);
        if (count < 8 && next != scattered.end()) {
            next->first = static_cast<std::uint8_t>(index * 16);
            for (std::size_t i = 0; i < 16; ++i) {
                next->low[i] = static_cast<std::uint8_t>((own[i] & 0xFF) ^ i);
                next->high[i] = static_cast<std::uint8_t>(own[i] >> 8);
            }
            places.Enter(index, Places::Whole);
            ++next;
        } else if (places.Enter(index, *best)) {
            const std::size_t first = own[member] - member;
            low[index] = static_cast<std::uint8_t>(first & 0xFF);
            high[index] = static_cast<std::uint8_t>(first >> 8);
        }
    }
}

CharacterRows::CharacterRows(std::uint8_t upperHalf, std::span<const unsigned char> bytes,
                             const std::array<char16_t, 256>& characters)
    : upper(upperHalf) {
    for (std::size_t index = 0; index < 16; ++index) {
        const std::size_t first = upperHalf * std::size_t{256} + index * 16;
        // The members by the row of bytes that they become; the row that has most of them counts.
        std::array<std::uint16_t, 16> found{};
        for (std::size_t i = 0; i < 16; ++i) {
            const unsigned char byte = bytes[first + i];
            if (byte % 16 == i && characters[byte] == first + i) {
                found[byte / 16] = static_cast<std::uint16_t>(found[byte / 16] | 1U << i);
            }
        }
        const auto best = std::ranges::max_element(
            found, {}, [](std::uint16_t places16) { return std::popcount(places16); });
        if (places.Enter(index, *best)) {
            count += std::popcount(*best);
            base[index] = static_cast<std::uint8_t>((best - found.begin()) * 16);
        }
    }
}

PunctuationRows::PunctuationRows(std::span<const unsigned char> bytes,
                                 const std::array<char16_t, 256>& characters) {
    for (std::size_t index = 0; index < rows.size(); ++index) {
        rows[index].first = static_cast<std::uint8_t>(0x10 + index * 16);
        for (std::size_t i = 0; i < 16; ++i) {
            const std::size_t unit = Upper * std::size_t{256} + rows[index].first + i;
            if (characters[bytes[unit]] == unit) {
                rows[index].low[i] = static_cast<std::uint8_t>(bytes[unit] ^ i);
            }
        }
    }
}

#ifdef GENERALUTILITIES_AVX2
namespace {

constexpr std::size_t Block = 32;
/// With more exceptions than this in a block, looking all of it up is cheaper.
constexpr int MaxPatches = 10;

GENERALUTILITIES_AVX2 __m256i Load16(const std::array<std::uint8_t, 16>& table) {
    return _mm256_broadcastsi128_si256(
        _mm_load_si128(reinterpret_cast<const __m128i*>(table.data())));
}

/// Looks up those of a block that the rows did not tell.
template <class Entry, class From, class To>
void Patch(std::uint32_t missing, const Entry* table, const From* from, To* to) {
    if (std::popcount(missing) > MaxPatches) {
        for (std::size_t i = 0; i < Block; ++i) {
            to[i] = static_cast<To>(table[from[i]]);
        }
        return;
    }
    for (; missing != 0; missing &= missing - 1) {
        const int i = std::countr_zero(missing);
        to[i] = static_cast<To>(table[from[i]]);
    }
}

GENERALUTILITIES_AVX2 std::size_t DecodeAvx2(const ByteRows& rows, const char16_t* characters,
                                             const char* bytes, std::size_t length,
                                             char16_t* units) {
    const __m256i low = Load16(rows.low);
    const __m256i high = Load16(rows.high);
    const __m256i rowBits = Load16(rows.places.row);
    const __m256i memberBits = Load16(rows.places.members);
    const __m256i firstPlace = _mm256_set1_epi8(static_cast<char>(rows.scattered[0].first));
    const __m256i firstLow = Load16(rows.scattered[0].low);
    const __m256i firstHigh = Load16(rows.scattered[0].high);
    const __m256i secondPlace = _mm256_set1_epi8(static_cast<char>(rows.scattered[1].first));
    const __m256i secondLow = Load16(rows.scattered[1].low);
    const __m256i secondHigh = Load16(rows.scattered[1].high);
    const __m256i digit = _mm256_set1_epi8(0xF);
    const __m256i toSign = _mm256_set1_epi8(0x70);
    std::size_t i = 0;
    for (; i + Block <= length; i += Block) {
        // The middle quarters change places, so that unpacking gives the units in order.
        const __m256i block = _mm256_permute4x64_epi64(
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + i)), 0xD8);
        const __m256i row = _mm256_and_si256(_mm256_srli_epi16(block, 4), digit);
        const __m256i column = _mm256_and_si256(block, digit);
        __m256i lower = _mm256_or_si256(_mm256_shuffle_epi8(low, row), column);
        __m256i upper = _mm256_shuffle_epi8(high, row);
        // Outside its row a byte gets its highest bit here, for which shuffling gives 0.
        const __m256i inFirst = _mm256_adds_epu8(_mm256_xor_si256(block, firstPlace), toSign);
        const __m256i inSecond = _mm256_adds_epu8(_mm256_xor_si256(block, secondPlace), toSign);
        lower = _mm256_xor_si256(lower, _mm256_xor_si256(_mm256_shuffle_epi8(firstLow, inFirst),
                                                         _mm256_shuffle_epi8(secondLow, inSecond)));
        upper =
            _mm256_xor_si256(upper, _mm256_xor_si256(_mm256_shuffle_epi8(firstHigh, inFirst),
                                                     _mm256_shuffle_epi8(secondHigh, inSecond)));
        auto* const to = reinterpret_cast<__m256i*>(units + i);
        _mm256_storeu_si256(to, _mm256_unpacklo_epi8(lower, upper));
        _mm256_storeu_si256(to + 1, _mm256_unpackhi_epi8(lower, upper));
        const __m256i told = _mm256_and_si256(_mm256_shuffle_epi8(rowBits, row),
                                              _mm256_shuffle_epi8(memberBits, column));
        const __m256i missing = _mm256_cmpeq_epi8(told, _mm256_setzero_si256());
        if (_mm256_testz_si256(missing, missing) == 0) {
            const __m256i inOrder = _mm256_permute4x64_epi64(missing, 0xD8);
            Patch(static_cast<std::uint32_t>(_mm256_movemask_epi8(inOrder)), characters,
                  reinterpret_cast<const unsigned char*>(bytes) + i, units + i);
        }
    }
    return i;
}

GENERALUTILITIES_AVX2 std::size_t EncodeAvx2(const CharacterRows& first,
                                             const CharacterRows& second,
                                             const PunctuationRows& punctuation,
                                             const unsigned char* byteOf, const char16_t* units,
                                             std::size_t length, char* bytes) {
    const __m256i firstBase = Load16(first.base);
    const __m256i firstRow = Load16(first.places.row);
    const __m256i firstMembers = Load16(first.places.members);
    const __m256i firstUpper = _mm256_set1_epi8(static_cast<char>(first.upper));
    const __m256i secondBase = Load16(second.base);
    const __m256i secondRow = Load16(second.places.row);
    const __m256i secondMembers = Load16(second.places.members);
    const __m256i secondUpper = _mm256_set1_epi8(static_cast<char>(second.upper));
    const __m256i digit = _mm256_set1_epi8(0xF);
    const __m256i lowerHalf = _mm256_set1_epi16(0xFF);
    const __m256i marksUpper = _mm256_set1_epi8(PunctuationRows::Upper);
    const __m256i marks0 = Load16(punctuation.rows[0].low);
    const __m256i marks1 = Load16(punctuation.rows[1].low);
    const __m256i place0 = _mm256_set1_epi8(static_cast<char>(punctuation.rows[0].first));
    const __m256i place1 = _mm256_set1_epi8(static_cast<char>(punctuation.rows[1].first));
    const __m256i toSign = _mm256_set1_epi8(0x70);
    std::size_t i = 0;
    for (; i + Block <= length; i += Block) {
        const auto* const from = reinterpret_cast<const __m256i*>(units + i);
        const __m256i a = _mm256_loadu_si256(from);
        const __m256i b = _mm256_loadu_si256(from + 1);
        const __m256i lower =
            _mm256_packus_epi16(_mm256_and_si256(a, lowerHalf), _mm256_and_si256(b, lowerHalf));
        const __m256i upper = _mm256_packus_epi16(_mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8));
        const __m256i row = _mm256_and_si256(_mm256_srli_epi16(lower, 4), digit);
        const __m256i column = _mm256_and_si256(lower, digit);
        const __m256i isFirst = _mm256_cmpeq_epi8(upper, firstUpper);
        const __m256i isSecond = _mm256_cmpeq_epi8(upper, secondUpper);
        const __m256i told = _mm256_or_si256(
            _mm256_and_si256(isFirst, _mm256_and_si256(_mm256_shuffle_epi8(firstRow, row),
                                                       _mm256_shuffle_epi8(firstMembers, column))),
            _mm256_and_si256(isSecond,
                             _mm256_and_si256(_mm256_shuffle_epi8(secondRow, row),
                                              _mm256_shuffle_epi8(secondMembers, column))));
        const __m256i base =
            _mm256_or_si256(_mm256_and_si256(isFirst, _mm256_shuffle_epi8(firstBase, row)),
                            _mm256_and_si256(isSecond, _mm256_shuffle_epi8(secondBase, row)));
        // Outside its row a character gets the highest bit here, for which shuffling gives 0.
        const __m256i in0 = _mm256_adds_epu8(_mm256_xor_si256(lower, place0), toSign);
        const __m256i in1 = _mm256_adds_epu8(_mm256_xor_si256(lower, place1), toSign);
        const __m256i mark = _mm256_and_si256(
            _mm256_cmpeq_epi8(upper, marksUpper),
            _mm256_xor_si256(_mm256_shuffle_epi8(marks0, in0), _mm256_shuffle_epi8(marks1, in1)));
        const __m256i out = _mm256_xor_si256(_mm256_or_si256(base, column), mark);
        // Packing went by halves of the registers; the middle quarters change back.
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes + i),
                            _mm256_permute4x64_epi64(out, 0xD8));
        const __m256i missing =
            _mm256_cmpeq_epi8(_mm256_or_si256(told, mark), _mm256_setzero_si256());
        if (_mm256_testz_si256(missing, missing) == 0) {
            const __m256i inOrder = _mm256_permute4x64_epi64(missing, 0xD8);
            Patch(static_cast<std::uint32_t>(_mm256_movemask_epi8(inOrder)), byteOf, units + i,
                  bytes + i);
        }
    }
    return i;
}

}  // namespace
#endif

std::size_t DecodeByRows([[maybe_unused]] const ByteRows& rows,
                         [[maybe_unused]] const std::array<char16_t, 256>& characters,
                         [[maybe_unused]] const char* bytes, [[maybe_unused]] std::size_t length,
                         [[maybe_unused]] char16_t* units) {
#ifdef GENERALUTILITIES_AVX2
    if (HasAvx2()) {
        return DecodeAvx2(rows, characters.data(), bytes, length, units);
    }
#endif
    return 0;
}

std::size_t EncodeByRows([[maybe_unused]] const CharacterRows& first,
                         [[maybe_unused]] const CharacterRows& second,
                         [[maybe_unused]] const PunctuationRows& punctuation,
                         [[maybe_unused]] const unsigned char* byteOf,
                         [[maybe_unused]] const char16_t* units,
                         [[maybe_unused]] std::size_t length, [[maybe_unused]] char* bytes) {
#ifdef GENERALUTILITIES_AVX2
    if (HasAvx2()) {
        return EncodeAvx2(first, second, punctuation, byteOf, units, length, bytes);
    }
#endif
    return 0;
}

}  // namespace generalutilities::code_pages
