#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// Finding a string in a string, without any locale of the machine.
namespace generalutilities {

/// How strings are compared.
struct SearchOptions {
    /// Compare code units exactly. Both strings then count up to their first U+0000 (the text from
    /// the place where the search starts). Else case is folded by the library's own tables, U+00DF
    /// and capital "SS" stand for each other, and U+0000 is a code unit like any other.
    bool matchCase = false;
    /// The code units before and behind the match, where there are any, must be separators:
    /// neither letters nor numbers nor East Asian.
    bool wholeWord = false;
};

/// A match: the 0-based index of its first code unit, and the number of code units it covers.
struct TextMatch {
    std::size_t position = 0;
    /// Of the text's code units. Differs from the length of what was sought where U+00DF met "SS".
    /// With `matchCase` always the whole length of what was sought, even behind a U+0000.
    std::size_t length = 0;

    friend bool operator==(const TextMatch&, const TextMatch&) = default;
};

/// The first match at or behind the 0-based index `start`; matches may overlap those that were
/// refused as no whole word. An empty `sought` is found at `start`. Nothing is found when `start`
/// is at or behind the end of the text.
std::optional<TextMatch> FindText(std::u16string_view text, std::u16string_view sought,
                                  std::size_t start, SearchOptions options);

}  // namespace generalutilities
