#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Words, numbers, separators and index keys of running text in any script.
///
/// Two scanners exist, `WordParser::ParseStep` and `WordParser::ParseAll`. They agree on the broad
/// lines and differ in many small ones (docs/words-and-keys.md lists them); stored keys depend on
/// both, so neither replaces the other. What a code unit is follows from the code unit alone, so no
/// scanner keeps state between calls and any number of threads may parse at once.
///
/// A *placeholder* is "{", one or more ASCII digits, "}": the stand-in of an inline code.
/// Languages are 16-bit Windows language identifiers, taken whole: 1033 and 2057 are two languages.
namespace generalutilities {

/// The type of a token.
enum WordTypeEnum : std::int32_t {
    qlnwtWord = 0,       ///< a word
    qlnwtDigit = 1,      ///< a number, with its separators
    qlnwtSeparator = 2,  ///< a run of anything else
    qlnwtDBCS = 3,       ///< one East Asian code unit, always a token of length 1
    qlnwtCode = 4,       ///< a placeholder
};

/// A stretch of a text. `first` and `end` are 0-based code unit indexes; `end` lies behind the
/// last.
struct TextToken {
    std::int32_t first = 0;
    std::int32_t end = 0;
    WordTypeEnum type = qlnwtSeparator;

    friend bool operator==(const TextToken&, const TextToken&) = default;
};

/// The code units that may stand between the digits of a number; 0 where there is none.
struct NumberSeparators {
    char16_t thousands = 0;
    char16_t decimal = 0;
    char16_t altThousands = 0;  ///< U+0020 where `thousands` is U+00A0
    char16_t altDecimal = 0;    ///< no language of the table has one

    /// The separators of a language; all 0 for a language that is not in the table.
    static NumberSeparators OfLanguage(std::int32_t langId);
};

/// The two scanners for one language. Cheap to make: it holds the separators and nothing else.
/// A text of more than 2^31 - 1 code units is refused with std::length_error.
class WordParser {
  public:
    explicit WordParser(std::int32_t langId);

    std::int32_t Language() const { return langId; }

    /// The token that starts at the 0-based index `position`; nothing when `position` is at or
    /// behind the end of the text. The next token starts at the `end` of this one.
    std::optional<TextToken> ParseStep(std::u16string_view text, std::size_t position) const {
        WordTypeEnum type{};
        const std::int32_t end = FindEnd(text, position, type);
        if (end == 0) {
            return std::nullopt;
        }
        return TextToken{static_cast<std::int32_t>(position), end, type};
    }

    /// All tokens of a text, in order, appended to nothing: `tokens` is emptied first.
    void ParseAll(std::u16string_view text, std::vector<TextToken>& tokens) const;

  private:
    /// What ParseStep is made of: the end of the token, 0 where there is none. It comes in a
    /// register, since the way of a token through memory would be the slowest part of the work.
    std::int32_t FindEnd(std::u16string_view text, std::size_t position, WordTypeEnum& type) const;

    std::int32_t langId;
    NumberSeparators separators;
};

/// Makes each run of spaces and placeholders, mixed, one space; everything else stays.
/// A "{" behind an odd number of backslashes starts no placeholder.
std::u16string FoldBlanksAndCodes(std::u16string_view text);

/// The index key of a text: from its first word to its last, without numbers, with single spaces,
/// at most `indexSize` code units long and never ending in a space. Empty for `indexSize` <= 0.
/// The text counts up to its first U+0000.
std::u16string ToIndex(std::u16string_view text, std::int32_t langId, std::int32_t indexSize = 50);

/// Writes `text` to `out`, which has room for as many code units, with the punctuation of all
/// scripts as plain ASCII, one code unit for one. `lcid` 1032 (Greek) makes ";" a question mark.
/// `out` may be the text itself.
void SimplifyTo(std::u16string_view text, std::int32_t lcid, char16_t* out);

/// The same as a new string, of the text up to its first U+0000.
std::u16string SimplifyString(std::u16string_view text, std::int32_t lcid);

}  // namespace generalutilities
