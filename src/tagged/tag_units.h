#pragma once

#include <generalutilities/tagged/tag_scan.h>

#include "platform/cpu.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Looking for the few code units that tags are made of.
namespace generalutilities {

inline constexpr std::size_t NoUnit = std::u16string_view::npos;

/// Whether the text has these letters at a position, in either case; `letters` are lower case ASCII
/// letters and marks without a case, none of which a character beyond ASCII folds to.
inline bool HasLettersAt(std::u16string_view text, std::size_t at, std::u16string_view letters) {
    if (text.size() < at || text.size() - at < letters.size()) {
        return false;
    }
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const char16_t unit = text[at + i];
        if (unit != letters[i] && !(unit >= u'A' && unit <= u'Z' && (unit | 0x20) == letters[i])) {
            return false;
        }
    }
    return true;
}

/// Whether the name of the tag at `open`, which ends at `nameEnd`, is "ut".
inline bool IsCodeElement(std::u16string_view text, std::size_t open, std::size_t nameEnd) {
    return nameEnd - open == 3 && (text[open + 1] == u'u' || text[open + 1] == u'U') &&
           (text[open + 2] == u't' || text[open + 2] == u'T');
}

/// What the tag at `open` is by its name.
inline TagKind ClassifyTag(std::u16string_view text, std::size_t open, std::size_t nameEnd) {
    if (IsCodeElement(text, open, nameEnd)) {
        return TagKind::CodeElement;
    }
    return HasLettersAt(text, open + 1, u"df")    ? TagKind::OpeningFontTag
           : HasLettersAt(text, open + 1, u"/df") ? TagKind::ClosingFontTag
                                                  : TagKind::Other;
}

/// The places of `<`, `>` and spaces in a block of 64 units, as bits.
struct TagPlaces {
    static constexpr std::size_t BlockSize = 64;

    std::uint64_t opens = 0;
    std::uint64_t closes = 0;
    std::uint64_t spaces = 0;
};

#ifdef GENERALUTILITIES_AVX2
/// Of a whole block; needs HasAvx2().
TagPlaces FindTagPlacesAvx2(const char16_t* block);
#endif

/// Finds by block and not by unit.
///
/// A tag is short, and so is the text between two of them: loops that look for one unit after the
/// other spend their time on guessing wrongly when they end. Here a block is turned into bits once,
/// and most finds are a shift.
class TagUnits {
  public:
    explicit TagUnits(std::u16string_view searched) : text(searched) {}

    /// The first `<` at or behind `from`; `NoUnit` when there is none.
    std::size_t FindOpen(std::size_t from) {
        return Find(from, [](const TagPlaces& found) { return found.opens; });
    }
    /// The first `>`.
    std::size_t FindClose(std::size_t from) {
        return Find(from, [](const TagPlaces& found) { return found.closes; });
    }
    /// Where the name of the tag at `open` ends: at a space or a `>`.
    std::size_t FindNameEnd(std::size_t open) {
        return Find(open + 1, [](const TagPlaces& found) { return found.closes | found.spaces; });
    }
    /// The first "</ut", in either case.
    std::size_t FindCodeElementEnd(std::size_t from) {
        for (std::size_t at = from; (at = FindOpen(at)) != NoUnit; ++at) {
            if (HasLettersAt(text, at, u"</ut")) {
                return at;
            }
        }
        return NoUnit;
    }

  private:
    template <class Choose>
    std::size_t Find(std::size_t from, Choose choose) {
        std::size_t start = from / TagPlaces::BlockSize * TagPlaces::BlockSize;
        if (start >= text.size()) {
            return NoUnit;
        }
        Load(start);
        std::uint64_t bits = choose(places) >> (from - start) << (from - start);
        while (bits == 0) {
            start += TagPlaces::BlockSize;
            if (start >= text.size()) {
                return NoUnit;
            }
            Load(start);
            bits = choose(places);
        }
        return start + static_cast<std::size_t>(std::countr_zero(bits));
    }

    void Load(std::size_t start) {
        if (start == block) {
            return;
        }
        block = start;
#ifdef GENERALUTILITIES_AVX2
        if (wide && text.size() >= TagPlaces::BlockSize) {
            // The last block begins with units that were looked at already.
            const std::size_t first = std::min(start, text.size() - TagPlaces::BlockSize);
            const TagPlaces found = FindTagPlacesAvx2(text.data() + first);
            const std::size_t before = start - first;
            places = {found.opens >> before, found.closes >> before, found.spaces >> before};
            return;
        }
#endif
        places = {PlacesOf(u'<'), PlacesOf(u'>'), PlacesOf(u' ')};
    }

    /// In the block, which the end of the text may cut short.
    std::uint64_t PlacesOf(char16_t unit) const {
        std::uint64_t bits = 0;
        const std::size_t end = std::min(text.size(), block + TagPlaces::BlockSize);
        std::size_t i = block;
#if defined(__SSE2__)
        const auto compare = [&](std::size_t at) {
            const __m128i equal =
                _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at)),
                                _mm_set1_epi16(static_cast<short>(unit)));
            return static_cast<std::uint64_t>(
                _mm_movemask_epi8(_mm_packs_epi16(equal, _mm_setzero_si128())));
        };
        for (; end - i >= 8; i += 8) {
            bits |= compare(i) << (i - block);
        }
        if (i < end && end >= 8) {
            // The last eight units of the text, of which the first were looked at already.
            return bits | compare(end - 8) >> (i - (end - 8)) << (i - block);
        }
#endif
        for (; i < end; ++i) {
            bits |= static_cast<std::uint64_t>(text[i] == unit) << (i - block);
        }
        return bits;
    }

    std::u16string_view text;
#ifdef GENERALUTILITIES_AVX2
    bool wide = HasAvx2();
#endif
    std::size_t block = NoUnit;  ///< the one that `places` is of
    TagPlaces places;
};

}  // namespace generalutilities
