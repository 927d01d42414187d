// ParseStep: one token at a time, from any position. A word may start with "&" (the mark of a
// menu's access key), Han continues a word, and a decimal sign keeps one separator in front of it.
// What the position is in the whole text matters in two places: at index 0 there is nothing to look
// back at, and elsewhere the unit before a decimal sign decides, also when an earlier token holds
// it.

#include <generalutilities/text/words.h>

#include "text/flat_tables.h"
#include "text/word_scan.h"

#include <algorithm>
#include <bit>

namespace generalutilities {
namespace {

constexpr std::uint8_t InWord = charclass::Letter | charclass::Number;

/// The first unit from `i` on that is neither letter nor number. Eight at a time without a branch,
/// since no processor foresees the lengths of words; written out, since compilers keep the loop.
std::size_t LettersEnd(std::u16string_view text, std::size_t i) {
    constexpr unsigned Several = 8;
    for (; i + Several <= text.size(); i += Several) {
        const char16_t* const units = text.data() + i;
        const auto bit = [units](unsigned j) {
            return static_cast<unsigned>((flat::Classes[units[j]] & InWord) != 0) << j;
        };
        const unsigned in =
            (bit(0) | bit(1)) | (bit(2) | bit(3)) | ((bit(4) | bit(5)) | (bit(6) | bit(7)));
        if (const auto count = static_cast<unsigned>(std::countr_one(in)); count < Several) {
            return i + count;
        }
    }
    while (i < text.size() && (flat::Classes[text[i]] & InWord) != 0) {
        ++i;
    }
    return i;
}

/// The end of the word at `first`; `first` itself when a lone "&" turns out to start none.
std::size_t WordEnd(std::u16string_view text, std::size_t first, bool apostropheJoins) {
    for (std::size_t i = first + 1;; ++i) {
        i = LettersEnd(text, i);
        if (i == text.size()) {
            return i;
        }
        if (text[i] != u'&' && text[i] != u'\'') {
            return text[first] == u'&' && i == first + 1 ? first : i;
        }
        if (text[i] == u'\'' && !apostropheJoins) {
            return i + 1;
        }
    }
}

/// The token at `first` where no word, number or East Asian unit starts: a separator run mostly.
TextToken SeparatorToken(const NumberSeparators& separators, std::u16string_view text,
                         std::size_t first) {
    std::size_t ampersandsEnd = 0;  // the "&" before this index have been looked behind already
    for (std::size_t i = first;;) {
        const char16_t unit = text[i];
        if (unit == u'{') {
            if (const std::size_t length = PlaceholderLength(text, i); length > 0) {
                return i == first ? MakeToken(first, first + length, qlnwtCode)
                                  : MakeToken(first, i, qlnwtSeparator);
            }
            ++i;
        } else if (unit == u'&') {
            if (i >= ampersandsEnd) {
                ampersandsEnd = std::min(text.find_first_not_of(u'&', i), text.size());
            }
            if (ampersandsEnd < text.size() && IsLetter(text[ampersandsEnd])) {
                return MakeToken(first, i, qlnwtSeparator);
            }
            ++i;
        } else if (IsDecimal(separators, unit) && i + 1 < text.size() && IsNumber(text[i + 1])) {
            const bool ownsOneBefore = i == first + 1;
            if (i == 0 || (ownsOneBefore && IsSeparator(text[i - 1]))) {
                return MakeToken(first, NumberEnd(separators, text, i + 1), qlnwtDigit);
            }
            if (IsSeparator(text[i - 1])) {
                return MakeToken(first, i + 1, qlnwtSeparator);
            }
        }
        // A "{" or "&" that starts nothing takes the separator behind it along, unlooked at.
        if (i == text.size() || !IsSeparator(text[i])) {
            return MakeToken(first, i, qlnwtSeparator);
        }
        if (++i == text.size()) {
            return MakeToken(first, i, qlnwtSeparator);
        }
    }
}

}  // namespace

WordParser::WordParser(std::int32_t id)
    : langId(id), separators(NumberSeparators::OfLanguage(id)) {}

std::int32_t WordParser::FindEnd(std::u16string_view text, std::size_t position,
                                 WordTypeEnum& type) const {
    CheckTextLength(text);
    if (position >= text.size()) {
        return 0;
    }
    const char16_t unit = text[position];
    const std::uint8_t classes = flat::Classes[unit];
    if ((classes & charclass::EastAsian) != 0) {
        type = qlnwtDBCS;
        return static_cast<std::int32_t>(position + 1);
    }
    if ((classes & charclass::Letter) != 0 || unit == u'&') {
        const std::size_t end = WordEnd(text, position, langId == 1033);
        if (end != position) {
            type = qlnwtWord;
            return static_cast<std::int32_t>(end);
        }
    }
    if ((classes & charclass::Number) != 0) {
        type = qlnwtDigit;
        return static_cast<std::int32_t>(NumberEnd(separators, text, position));
    }
    const TextToken token = SeparatorToken(separators, text, position);
    type = token.type;
    return token.end;
}

}  // namespace generalutilities
