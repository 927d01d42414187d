#pragma once

#include <generalutilities/tagged/tag_scan.h>

#if defined(__SSE2__)
#include <bit>
#include <emmintrin.h>
#endif

/// Looking for the few code units that tags are made of, eight at a step where the processor has
/// SSE2. That belongs to every x86-64 processor and is compiled into the place, so that short runs
/// pay for no call; wider vectors would gain nothing at the length of a segment.
namespace generalutilities {

inline constexpr std::size_t NoUnit = std::u16string_view::npos;

/// The first of one or more code units at or behind `from`; `NoUnit` when there is none.
template <class... Units>
std::size_t FindAnyUnit(std::u16string_view text, std::size_t from, Units... wanted) {
    std::size_t i = from;
#if defined(__SSE2__)
    for (; i + 8 <= text.size(); i += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + i));
        __m128i found = _mm_setzero_si128();
        ((found = _mm_or_si128(found,
                               _mm_cmpeq_epi16(block, _mm_set1_epi16(static_cast<short>(wanted))))),
         ...);
        if (const int mask = _mm_movemask_epi8(found); mask != 0) {
            return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(mask))) / 2;
        }
    }
#endif
    for (; i < text.size(); ++i) {
        if (((text[i] == wanted) || ...)) {
            return i;
        }
    }
    return NoUnit;
}

/// Where the name of the tag at `open` ends: at a space or a `>`.
inline std::size_t FindNameEnd(std::u16string_view text, std::size_t open) {
    return FindAnyUnit(text, open + 1, u' ', u'>');
}

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

/// What the tag at `open` is by its name, which ends at `nameEnd`.
inline TagKind ClassifyTag(std::u16string_view text, std::size_t open, std::size_t nameEnd) {
    if (nameEnd - open == 3 && HasLettersAt(text, open + 1, u"ut")) {
        return TagKind::CodeElement;
    }
    return HasLettersAt(text, open + 1, u"df")    ? TagKind::OpeningFontTag
           : HasLettersAt(text, open + 1, u"/df") ? TagKind::ClosingFontTag
                                                  : TagKind::Other;
}

/// The first "</ut" at or behind `from`, in either case; `NoUnit` when there is none.
inline std::size_t FindCodeElementEnd(std::u16string_view text, std::size_t from) {
    for (std::size_t at = from; (at = FindAnyUnit(text, at, u'<')) != NoUnit; ++at) {
        if (HasLettersAt(text, at, u"</ut")) {
            return at;
        }
    }
    return NoUnit;
}

}  // namespace generalutilities
