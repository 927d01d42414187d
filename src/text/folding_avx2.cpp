// FoldPrefix by blocks of 32 code units. What a block holds decides how it is folded, the cheapest
// way first:
//
//   ASCII alone           one range is moved
//   nothing with a case   copied; nearly all of the East Asian scripts
//   one page              a page is 128 units, as many as one script's letters need; the distances
//                         that its units move by are a table in registers. Blanks, digits and
//                         punctuation may stand between its letters
//   anything else         unit by unit through the flat tables, at one cost for all scripts
//
// Accents move letters too far for a table of bytes, so removing them knows the first and the last
// way only. (Gathering table entries with vectors would be faster than the last way on some
// processors; on those whose microcode guards gathers it is many times slower.)

#include "platform/cpu.h"
#include "text/folding_rules.h"

#ifdef GENERALUTILITIES_AVX2

#include "text/vectors_avx2.h"

#include <bit>

namespace generalutilities {
namespace {

constexpr int PageBits = 7;
static_assert(flat::PageSize == 1 << PageBits);

/// No unit of this range has a partner in the other case.
constexpr char16_t FirstCaseless = 0x24EA;
constexpr char16_t LastCaseless = 0xFF20;

/// Nor of this page: General Punctuation, whose dashes and quotation marks stand in every script.
constexpr int PunctuationPage = 0x2000 >> PageBits;

/// Where a block mixes letters of several pages, so do the next ones: they are not even looked at.
constexpr int BlocksUntried = 3;

AVX2 inline bool IsCaseless(Block block) {
    const __m256i caseless = _mm256_and_si256(InRange(block.low, FirstCaseless, LastCaseless),
                                              InRange(block.high, FirstCaseless, LastCaseless));
    return _mm256_testc_si256(caseless, All(0xFFFF)) != 0;
}

/// Folds the units of a half that are ASCII.
template <Case To>
AVX2 inline __m256i FoldAscii(__m256i units) {
    if constexpr (To == Case::Kept) {
        return units;
    } else {
        const __m256i letters =
            To == Case::Upper ? InRange(units, u'a', u'z') : InRange(units, u'A', u'Z');
        return _mm256_xor_si256(units, _mm256_and_si256(letters, All(0x20)));
    }
}

template <typename Rule>
AVX2 inline __m256i Grows(__m256i units, __m256i mapped) {
    __m256i grows = _mm256_setzero_si256();
    if constexpr (Rule::ToCase == Case::Upper) {
        grows = _mm256_cmpeq_epi16(mapped, All(SharpS));
    }
    if constexpr (Rule::RemovesAccents) {
        const __m256i moved = _mm256_xor_si256(_mm256_cmpeq_epi16(units, mapped), All(0xFFFF));
        grows = _mm256_or_si256(grows, _mm256_and_si256(InRange(mapped, 0xD800, 0xDFFF), moved));
    }
    return grows;
}

/// The digits, blanks and punctuation that go with every script: those of Latin-1, which have the
/// bits of 0xFF40 clear, and General Punctuation.
AVX2 inline __m256i AreCompanions(__m256i units) {
    return _mm256_or_si256(
        _mm256_cmpeq_epi16(_mm256_and_si256(units, All(0xFF40)), _mm256_setzero_si256()),
        _mm256_cmpeq_epi16(_mm256_srli_epi16(units, PageBits), All(PunctuationPage)));
}

AVX2 inline __m256i AreInPage(__m256i units, std::size_t page) {
    return _mm256_cmpeq_epi16(_mm256_srli_epi16(units, PageBits), All(static_cast<int>(page)));
}

/// Folds whole blocks that lie in one page, companions aside, up to the first that does not; how
/// many units.
template <Case To>
AVX2 inline std::size_t FoldPage(const char16_t* units, std::size_t count, char16_t* out) {
    Block block = Load(units);
    const std::uint64_t others = ~Bits({AreCompanions(block.low), AreCompanions(block.high)});
    const std::size_t page = units[others == 0 ? 0 : std::countr_zero(others) / 2] / flat::PageSize;
    Block inPage = {AreInPage(block.low, page), AreInPage(block.high, page)};
    // In this order, since a processor foresees that a mixed block holds several scripts.
    if ((others & ~Bits(inPage)) != 0 || page < flat::FirstPage || page > flat::LastPage) {
        return 0;
    }
    const ByteTable table = LoadTable(
        (To == Case::Upper ? flat::UpperPages : flat::LowerPages)[page - flat::FirstPage].data());
    for (std::size_t done = 0;;) {
        const __m256i distances =
            LookUp(table, _mm256_packus_epi16(_mm256_and_si256(block.low, All(0x7F)),
                                              _mm256_and_si256(block.high, All(0x7F))));
        const __m256i signs = _mm256_cmpgt_epi8(_mm256_setzero_si256(), distances);
        const __m256i ofLow = _mm256_unpacklo_epi8(distances, signs);
        const __m256i ofHigh = _mm256_unpackhi_epi8(distances, signs);
        Store({_mm256_add_epi16(block.low, _mm256_and_si256(ofLow, inPage.low)),
               _mm256_add_epi16(block.high, _mm256_and_si256(ofHigh, inPage.high))},
              out + done);
        done += BlockSize;
        if (done + BlockSize > count) {
            return done;
        }
        block = Load(units + done);
        inPage = {AreInPage(block.low, page), AreInPage(block.high, page)};
        const __m256i known =
            _mm256_and_si256(_mm256_or_si256(inPage.low, AreCompanions(block.low)),
                             _mm256_or_si256(inPage.high, AreCompanions(block.high)));
        if (_mm256_testc_si256(known, All(0xFFFF)) == 0) {
            return done;
        }
    }
}

template <typename Rule>
AVX2 inline __m128i FoldEightByTable(const char16_t* units) {
    __m128i folded = _mm_cvtsi32_si128(Rule::Map(units[0]));
    folded = _mm_insert_epi16(folded, Rule::Map(units[1]), 1);
    folded = _mm_insert_epi16(folded, Rule::Map(units[2]), 2);
    folded = _mm_insert_epi16(folded, Rule::Map(units[3]), 3);
    folded = _mm_insert_epi16(folded, Rule::Map(units[4]), 4);
    folded = _mm_insert_epi16(folded, Rule::Map(units[5]), 5);
    folded = _mm_insert_epi16(folded, Rule::Map(units[6]), 6);
    return _mm_insert_epi16(folded, Rule::Map(units[7]), 7);
}

template <typename Rule>
AVX2 inline Block FoldByTable(const char16_t* units) {
    return {
        _mm256_setr_m128i(FoldEightByTable<Rule>(units), FoldEightByTable<Rule>(units + 8)),
        _mm256_setr_m128i(FoldEightByTable<Rule>(units + 16), FoldEightByTable<Rule>(units + 24))};
}

template <typename Rule>
AVX2 std::size_t FoldBlocks(const char16_t* units, std::size_t count, char16_t* out) {
    if (count < BlockSize) {
        return MapUnits<Rule>(units, count, out);
    }
    // For one block alone loading a page's table does not pay.
    int untried = count < 2 * BlockSize ? 1 : 0;
    for (std::size_t i = 0; i < count; i += BlockSize) {
        // The last block is a whole one too; what it shares with the one before is folded twice.
        i = std::min(i, count - BlockSize);
        const Block block = Load(units + i);
        if (IsAscii(block)) {
            Store({FoldAscii<Rule::ToCase>(block.low), FoldAscii<Rule::ToCase>(block.high)},
                  out + i);
            continue;
        }
        if constexpr (!Rule::RemovesAccents) {
            if (IsCaseless(block)) {
                Store(block, out + i);
                continue;
            }
            if (untried > 0) {
                --untried;
            } else if (const std::size_t done =
                           FoldPage<Rule::ToCase>(units + i, count - i, out + i);
                       done > 0) {
                i += done - BlockSize;
                continue;
            } else {
                untried = BlocksUntried;
            }
        }
        const Block folded = FoldByTable<Rule>(units + i);
        Store(folded, out + i);
        if (const std::uint64_t grows =
                Bits({Grows<Rule>(block.low, folded.low), Grows<Rule>(block.high, folded.high)});
            grows != 0) {
            return i + static_cast<std::size_t>(std::countr_zero(grows)) / 2;
        }
    }
    return count;
}

}  // namespace

std::size_t FoldPrefixByBlocks(Fold fold, std::u16string_view text, char16_t* out) noexcept {
    return WithRule(fold, [text, out]<typename Rule>(Rule) {
        return FoldBlocks<Rule>(text.data(), text.size(), out);
    });
}

}  // namespace generalutilities

#else

namespace generalutilities {

std::size_t FoldPrefixByBlocks(Fold fold, std::u16string_view text, char16_t* out) noexcept {
    return FoldPrefixPlainly(fold, text, out);
}

}  // namespace generalutilities

#endif
