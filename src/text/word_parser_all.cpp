// ParseAll: a whole text at once. Every code unit is of one kind, East Asian units end a word, the
// apostrophe follows the rules of the primary language, and a backslash protects a "{". Each token
// depends on its start and on the text alone, so the ordinary ones between the few units with rules
// of their own are cut by bit masks, 64 units at a time.

#include <generalutilities/text/words.h>

#include "text/word_masks.h"
#include "text/word_scan.h"

#include <algorithm>
#include <bit>

namespace generalutilities {
namespace {

enum class Kind : std::uint8_t { Word, Digit, Separator, EastAsian };

/// A unit with several classes is a number first, then East Asian, then a letter.
constexpr Kind KindOf(char16_t unit) {
    constexpr auto Kinds = [] {
        std::array<Kind, 16> kinds{};
        for (unsigned classes = 0; classes < kinds.size(); ++classes) {
            kinds[classes] = (classes & charclass::Number) != 0      ? Kind::Digit
                             : (classes & charclass::EastAsian) != 0 ? Kind::EastAsian
                             : (classes & charclass::Letter) != 0    ? Kind::Word
                                                                     : Kind::Separator;
        }
        return kinds;
    }();
    return Kinds[CharClasses(unit)];
}

constexpr bool ContinuesWord(char16_t unit) {
    const Kind kind = KindOf(unit);
    return kind == Kind::Word || kind == Kind::Digit;
}

constexpr std::int32_t PrimaryLanguage(std::int32_t langId) {
    return langId & 0x3FF;
}
constexpr std::int32_t Dutch = 19;
constexpr std::int32_t English = 9;

enum class Apostrophe { EndsWordBefore, EndsWordBehind, Joins };

/// What the apostrophe at `position`, inside a word, does.
Apostrophe ApostropheAt(std::u16string_view text, std::size_t position, std::int32_t langId) {
    if (position + 1 == text.size() || !ContinuesWord(text[position + 1])) {
        return Apostrophe::EndsWordBefore;
    }
    const char16_t next = text[position + 1];
    switch (PrimaryLanguage(langId)) {
        case Dutch:
            return Apostrophe::EndsWordBefore;
        case English:  // the genitive's "s" is no part of the word, other contractions are
            return next == u's' || next == u'S' ? Apostrophe::EndsWordBefore : Apostrophe::Joins;
        default:  // an elided article is a word of its own
            return Apostrophe::EndsWordBehind;
    }
}

std::size_t WordEnd(std::u16string_view text, std::size_t first, std::int32_t langId) {
    std::size_t end = first + 1;
    for (; end < text.size(); ++end) {
        if (ContinuesWord(text[end]) || text[end] == u'&') {
            continue;
        }
        if (text[end] != u'\'') {
            break;
        }
        const Apostrophe effect = ApostropheAt(text, end, langId);
        if (effect != Apostrophe::Joins) {
            return effect == Apostrophe::EndsWordBehind ? end + 1 : end;
        }
    }
    return end;
}

/// Whether an odd number of backslashes stands before `position`. Only the "{" right behind a run
/// of backslashes asks, so each run is counted for one "{" only.
bool IsEscaped(std::u16string_view text, std::size_t position) {
    std::size_t first = position;
    while (first > 0 && text[first - 1] == u'\\') {
        --first;
    }
    return (position - first) % 2 != 0;
}

TextToken SeparatorToken(const NumberSeparators& separators, std::u16string_view text,
                         std::size_t first) {
    std::size_t end = first;
    for (; end < text.size(); ++end) {
        const char16_t unit = text[end];
        if (unit == u'{') {
            const std::size_t length = PlaceholderLength(text, end);
            if (length > 0 && !IsEscaped(text, end)) {
                if (end == first) {
                    return MakeToken(first, first + length, qlnwtCode);
                }
                break;
            }
        } else if (IsDecimal(separators, unit) && end + 1 < text.size() &&
                   IsNumber(text[end + 1])) {
            if (end == 0 || KindOf(text[end - 1]) == Kind::Separator) {
                if (end == first) {
                    return MakeToken(first, NumberEnd(separators, text, end + 1), qlnwtDigit);
                }
                break;
            }
        } else if (KindOf(unit) != Kind::Separator) {
            break;
        }
    }
    return MakeToken(first, end, qlnwtSeparator);
}

TextToken TokenAt(const NumberSeparators& separators, std::int32_t langId, std::u16string_view text,
                  std::size_t first) {
    switch (KindOf(text[first])) {
        case Kind::EastAsian:
            return MakeToken(first, first + 1, qlnwtDBCS);
        case Kind::Word:
            return MakeToken(first, WordEnd(text, first, langId), qlnwtWord);
        case Kind::Digit:
            return MakeToken(first, NumberEnd(separators, text, first), qlnwtDigit);
        default:
            return SeparatorToken(separators, text, first);
    }
}

/// Writes the ordinary tokens at the start of a stretch whose first unit starts a token; the end of
/// what was written. No unit that has a rule of its own stands in them or right behind them, so
/// each ends where the kind changes. (The rules of "{" and of decimal signs ask for a digit.)
TextToken* FindOrdinaryTokens(const WordMasks& masks, std::size_t first, TextToken* tokens) {
    const std::uint64_t beforeSpecial = (masks.special & (0 - masks.special)) - 1;
    const std::uint64_t starts =
        masks.eastAsian | masks.eastAsian << 1 | (masks.letters ^ masks.letters << 1);
    unsigned at = 0;
    for (std::uint64_t ends = starts & beforeSpecial & ~std::uint64_t{1}; ends != 0;
         ends &= ends - 1) {
        const auto end = static_cast<unsigned>(std::countr_zero(ends));
        const unsigned notLetter = ~(masks.letters >> at) & 1;
        const unsigned eastAsian = masks.eastAsian >> at & 1;
        static_assert(qlnwtWord == 0 && qlnwtSeparator == 2 && qlnwtDBCS == 3);
        *tokens++ = MakeToken(first + at, first + end,
                              static_cast<WordTypeEnum>(notLetter * 2 + eastAsian));
        at = end;
    }
    return tokens;
}

}  // namespace

void WordParser::ParseAll(std::u16string_view text, std::vector<TextToken>& tokens) const {
    CheckTextLength(text);
    // What the vector holds already is overwritten, which costs less than to empty and refill it.
    std::size_t count = 0;
    WordMasks masks;
    std::size_t known = 0;  // so many units from `first` on are in the masks
    for (std::size_t first = 0; first < text.size();) {
        if (known < WordMasks::Units / 2 && text.size() - first >= WordMasks::Units) {
            masks = FindWordMasks(text.data() + first);
            known = WordMasks::Units;
        }
        const std::size_t room = std::max<std::size_t>(known, 1);
        if (tokens.size() - count < room) {
            tokens.resize(std::max(count + room, tokens.size() * 2));
        }
        TextToken* const begin = tokens.data() + count;
        TextToken* end = known > 0 ? FindOrdinaryTokens(masks, first, begin) : begin;
        if (end == begin) {
            *end++ = TokenAt(separators, langId, text, first);
        }
        count += static_cast<std::size_t>(end - begin);
        const auto next = static_cast<std::size_t>(end[-1].end);
        masks.Skip(next - first);
        known -= std::min(known, next - first);
        first = next;
    }
    tokens.resize(count);
}

}  // namespace generalutilities
