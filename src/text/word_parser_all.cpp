// ParseAll: a whole text at once. Every code unit is of one kind, East Asian units end a word, the
// apostrophe follows the rules of the primary language, and a backslash protects a "{". Each token
// depends on its start and on the text alone.

#include <generalutilities/text/words.h>

#include "text/word_scan.h"

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

}  // namespace

void WordParser::ParseAll(std::u16string_view text, std::vector<TextToken>& tokens) const {
    CheckTextLength(text);
    tokens.clear();
    for (std::size_t first = 0; first < text.size();) {
        TextToken token;
        switch (KindOf(text[first])) {
            case Kind::EastAsian:
                token = MakeToken(first, first + 1, qlnwtDBCS);
                break;
            case Kind::Word:
                token = MakeToken(first, WordEnd(text, first, langId), qlnwtWord);
                break;
            case Kind::Digit:
                token = MakeToken(first, NumberEnd(separators, text, first), qlnwtDigit);
                break;
            case Kind::Separator:
                token = SeparatorToken(separators, text, first);
                break;
        }
        tokens.push_back(token);
        first = static_cast<std::size_t>(token.end);
    }
}

}  // namespace generalutilities
