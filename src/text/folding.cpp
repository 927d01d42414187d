// The four folds are one loop over the code units with four rules. Almost every text keeps its
// length, and most of its units stay as they are: such a text is copied as a block and the units
// that change are overwritten in the copy. Only a text that grows is written unit by unit. Either
// way the length is known before the one allocation.

#include <generalutilities/text/folding.h>

#include "text/char_tables.h"

namespace generalutilities {
namespace {

constexpr char16_t SharpS = 0x00DF;

/// A rule says how many units it makes of one, what the one is where it is one, and writes them
/// all.
struct UpperRule {
    static constexpr std::size_t Length(char16_t unit) { return unit == SharpS ? 2 : 1; }
    static constexpr char16_t Single(char16_t unit) { return UpperCase(unit); }
    static char16_t* Write(char16_t unit, char16_t* out) {
        if (unit == SharpS) {
            *out++ = u'S';
            *out++ = u'S';
        } else {
            *out++ = UpperCase(unit);
        }
        return out;
    }
};

/// Accents first, and then `Then` on each unit of the result. No fold makes a sharp s, so one
/// result stays one result.
template <char16_t Then(char16_t)>
struct DeAccentRule {
    static constexpr std::size_t Length(char16_t unit) {
        const char16_t entry = AccentFoldEntry(unit);
        return IsFoldSequence(entry) ? AccentFoldSequenceLength(entry) : 1;
    }
    static constexpr char16_t Single(char16_t unit) {
        const char16_t entry = AccentFoldEntry(unit);
        return Then(entry != 0 ? entry : unit);
    }
    static char16_t* Write(char16_t unit, char16_t* out) {
        const char16_t entry = AccentFoldEntry(unit);
        if (!IsFoldSequence(entry)) {
            *out++ = Then(entry != 0 ? entry : unit);
            return out;
        }
        const std::uint16_t* sequence = AccentFoldSequence(entry);
        const std::size_t length = AccentFoldSequenceLength(entry);
        for (std::size_t i = 0; i < length; ++i) {
            *out++ = Then(static_cast<char16_t>(sequence[i]));
        }
        return out;
    }
};

constexpr char16_t SameCase(char16_t unit) {
    return unit;
}

using AccentRule = DeAccentRule<SameCase>;

struct AccentUpperRule : DeAccentRule<UpperCase> {
    static constexpr std::size_t Length(char16_t unit) {
        return unit == SharpS ? 2 : DeAccentRule::Length(unit);
    }
    static char16_t* Write(char16_t unit, char16_t* out) {
        return unit == SharpS ? UpperRule::Write(unit, out) : DeAccentRule::Write(unit, out);
    }
};

template <typename Rule>
std::u16string MapEach(std::u16string_view text) {
    std::size_t length = 0;
    for (const char16_t unit : text) {
        length += Rule::Length(unit);
    }
    if (length == text.size()) {
        std::u16string result(text);
        for (char16_t& unit : result) {
            unit = Rule::Single(unit);
        }
        return result;
    }
    std::u16string result(length, u'\0');
    char16_t* out = result.data();
    for (const char16_t unit : text) {
        out = Rule::Write(unit, out);
    }
    return result;
}

}  // namespace

std::u16string ToUpper(std::u16string_view text) {
    return MapEach<UpperRule>(text);
}

std::u16string ToLower(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& unit : result) {
        unit = LowerCase(unit);
    }
    return result;
}

std::u16string DeAccentString(std::u16string_view text) {
    return MapEach<AccentRule>(text);
}

std::u16string DeAccentUpperCaseString(std::u16string_view text) {
    return MapEach<AccentUpperRule>(text);
}

}  // namespace generalutilities
