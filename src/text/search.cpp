// A search goes through the text with a filter, two rare units of what is sought, many places at a
// time, and compares the rest at each candidate. That is fast for texts as people write them, and
// takes the product of the lengths for others ("aaaa..." in which "aaa...b"). So it counts what it
// compares, and when that gets out of proportion the rest of the text is read unit by unit with an
// automaton that never goes back. Both hand each match to the same function, which may refuse it:
// matches that are no whole words do not end the search.
//
// Three ways of comparing differ in what a unit's *symbol* is:
// - exactly: the unit;
// - without case: its capital;
// - without case, where "ß" or "SS" is sought: its capital, but two symbols "S" for "ß". "ß" meets
//   only capital "SS", so equal symbols are necessary and not sufficient here: each match is
//   compared once more by the rule itself.

#include "text/char_tables.h"
#include "text/flat_tables.h"
#include "text/pair_scan.h"
#include "text/search_forms.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <vector>

namespace generalutilities {
namespace {

constexpr char16_t SharpS = 0x00DF;
constexpr char16_t CapitalSigma = 0x03A3;
constexpr char16_t FinalSigma = 0x03C2;

bool StartsWithCapitalSS(std::u16string_view text) {
    return text.size() >= 2 && text[0] == u'S' && text[1] == u'S';
}

/// How `sought` is compared with the beginning of a text, and whether the text ends at U+0000:
/// `Match` gives the number of the text's units that it covers, or NoMatch, and adds to `work` for
/// each unit looked at.
constexpr std::size_t NoMatch = std::numeric_limits<std::size_t>::max();

struct Exactly {
    static constexpr bool EndsAtZero = true;
    static constexpr bool Doubles = false;
    static char16_t Symbol(char16_t unit) { return unit; }
    static std::size_t Match(const char16_t* text, const char16_t*, std::u16string_view sought,
                             std::size_t& work) {
        for (std::size_t i = 0; i < sought.size(); ++i) {
            if (text[i] != sought[i]) {
                work += i;
                return NoMatch;
            }
        }
        work += sought.size();
        return sought.size();
    }
};

struct WithoutCase {
    static constexpr bool EndsAtZero = false;
    static constexpr bool Doubles = false;
    static char16_t Symbol(char16_t unit) { return flat::Upper[unit]; }
    static std::size_t Match(const char16_t* text, const char16_t*, std::u16string_view sought,
                             std::size_t& work) {
        for (std::size_t i = 0; i < sought.size(); ++i) {
            if (text[i] != sought[i] && Symbol(text[i]) != Symbol(sought[i])) {
                work += i;
                return NoMatch;
            }
        }
        work += sought.size();
        return sought.size();
    }
};

struct WithSharpS {
    static constexpr bool EndsAtZero = false;
    static constexpr bool Doubles = true;
    static char16_t Symbol(char16_t unit) { return unit == SharpS ? u'S' : flat::Upper[unit]; }
    static std::size_t Match(const char16_t* text, const char16_t* end, std::u16string_view sought,
                             std::size_t& work) {
        const std::u16string_view all(text, static_cast<std::size_t>(end - text));
        std::size_t at = 0;
        for (std::size_t i = 0; i < sought.size(); ++i, ++work) {
            if (at == all.size()) {
                return NoMatch;
            }
            const char16_t unit = all[at];
            const bool oneForOne = unit != SharpS && sought[i] != SharpS;
            if (unit == sought[i] || (oneForOne && Symbol(unit) == Symbol(sought[i]))) {
                ++at;
            } else if (unit == SharpS) {
                if (!StartsWithCapitalSS(sought.substr(i))) {
                    return NoMatch;
                }
                ++at;
                ++i;
            } else if (sought[i] == SharpS) {
                if (!StartsWithCapitalSS(all.substr(at))) {
                    return NoMatch;
                }
                at += 2;
            } else {
                return NoMatch;
            }
        }
        return at;
    }
};

/// How common the ASCII units are in running text, roughly: letters by their place in English.
constexpr auto AsciiCommonness = [] {
    constexpr std::string_view ByFrequency = "zqxjkvbpygfwmucldrhsnioate ";
    std::array<std::uint8_t, 0x80> commonness{};
    for (std::size_t unit = 0; unit < commonness.size(); ++unit) {
        const char small = static_cast<char>(unit >= 'A' && unit <= 'Z' ? unit + 'a' - 'A' : unit);
        const std::size_t place = ByFrequency.find(small);
        commonness[unit] = place == ByFrequency.npos ? 3 : static_cast<std::uint8_t>(place);
    }
    return commonness;
}();

/// Units of other scripts count as neither frequent nor rare, ideographs as the rarest.
int Commonness(char16_t unit) {
    return unit < 0x80 ? AsciiCommonness[unit] : unit < 0x2E80 ? 12 : 1;
}

/// The units of the text that `unit` may meet.
template <class Rule>
UnitPair::Unit AlternativesOf(char16_t unit, std::size_t offset) {
    if constexpr (Rule::EndsAtZero) {
        return {offset, {unit, unit, unit}};
    }
    if (Rule::Doubles && (unit == SharpS || unit == u'S' || unit == u's')) {
        return {offset, {SharpS, u'S', u's'}};
    }
    const char16_t upper = UpperCase(unit);
    const char16_t lower = LowerCase(upper);
    return {offset, {upper, lower, upper == CapitalSigma ? FinalSigma : lower}};
}

/// The number of units at the beginning of what is sought whose distance from the beginning of a
/// match is certain.
template <class Rule>
std::size_t CertainUnits(std::u16string_view sought) {
    constexpr std::size_t LookedAt = 24;
    const std::size_t most = std::min(sought.size(), LookedAt);
    if constexpr (Rule::Doubles) {
        for (std::size_t i = 1; i < most; ++i) {
            if (sought[i - 1] == SharpS || StartsWithCapitalSS(sought.substr(i - 1))) {
                return i;  // the first unit of what is sought is always certain
            }
        }
    }
    return most;
}

/// Two units to look for: the rarest, but in a short text, where choosing takes longer than it
/// saves, the first and the last.
template <class Rule>
UnitPair ChoosePair(std::u16string_view sought, bool shortText) {
    const std::size_t certain = CertainUnits<Rule>(sought);
    std::size_t places[2] = {0, certain - 1};
    int least[2] = {std::numeric_limits<int>::max(), std::numeric_limits<int>::max()};
    for (std::size_t i = 0; !shortText && i < certain; ++i) {
        const int commonness = Commonness(sought[i]);
        if (commonness < least[0]) {
            places[1] = places[0] == i ? certain - 1 : places[0];
            least[1] = least[0];
            places[0] = i;
            least[0] = commonness;
        } else if (commonness < least[1] && sought[i] != sought[places[0]]) {
            places[1] = i;
            least[1] = commonness;
        }
    }
    return {{AlternativesOf<Rule>(sought[places[0]], places[0]),
             AlternativesOf<Rule>(sought[places[1]], places[1])}};
}

/// How many alternatives a scan has to look at.
std::size_t AlternativesIn(const UnitPair& pair) {
    std::size_t most = 1;
    for (const auto& [offset, units] : pair.units) {
        most = std::max<std::size_t>(most, units[2] != units[1] ? 3 : units[1] != units[0] ? 2 : 1);
    }
    return most;
}

/// Reads the text from `first` on symbol by symbol, and calls `accept` for each match until it says
/// true. Time is in proportion to the lengths, but for matches that Rule::Match refuses.
template <class Rule, class Accept>
void FindByAutomaton(std::u16string_view text, std::u16string_view sought, std::size_t first,
                     Accept& accept) {
    std::vector<char16_t> symbols;
    symbols.reserve(sought.size());
    for (const char16_t unit : sought) {
        symbols.insert(symbols.end(), Rule::Doubles && unit == SharpS ? 2 : 1, Rule::Symbol(unit));
    }
    // shorter[n]: the longest beginning of `symbols`, shorter than n, with which the first n end.
    std::vector<std::uint32_t> shorter(symbols.size() + 1);
    for (std::uint32_t n = 1, length = 0; n < symbols.size(); ++n) {
        while (length > 0 && symbols[n] != symbols[length]) {
            length = shorter[length];
        }
        length += symbols[n] == symbols[length] ? 1 : 0;
        shorter[n + 1] = length;
    }
    const auto widthOf = [](char16_t unit) -> std::size_t {
        return Rule::Doubles && unit == SharpS ? 2 : 1;
    };
    // `begin` is the unit that holds the symbol number `beginSymbols`, counted from `first`.
    std::size_t begin = first;
    std::size_t beginSymbols = 0;
    std::size_t readSymbols = 0;
    [[maybe_unused]] std::size_t work = 0;
    std::uint32_t length = 0;
    for (std::size_t i = first; i < text.size(); ++i) {
        if (Rule::EndsAtZero && text[i] == 0) {
            return;
        }
        const char16_t symbol = Rule::Symbol(text[i]);
        for (std::size_t left = widthOf(text[i]); left > 0; --left) {
            while (length > 0 && (length == symbols.size() || symbol != symbols[length])) {
                length = shorter[length];
            }
            length += symbol == symbols[length] ? 1 : 0;
            ++readSymbols;
            if (length < symbols.size() || left > 1) {
                continue;
            }
            while (beginSymbols < readSymbols - length) {
                beginSymbols += widthOf(text[begin++]);
            }
            std::size_t covered = sought.size();
            if constexpr (Rule::Doubles) {
                covered =
                    beginSymbols == readSymbols - length
                        ? Rule::Match(text.data() + begin, text.data() + text.size(), sought, work)
                        : NoMatch;
            }
            if (covered != NoMatch && accept(TextMatch{begin, covered})) {
                return;
            }
        }
    }
}

template <class Rule, class Accept>
void FindByPair(std::u16string_view text, std::u16string_view sought, std::size_t first,
                bool vectors, Accept& accept) {
    constexpr std::size_t ShortText = 256;
    const UnitPair pair = ChoosePair<Rule>(sought, text.size() - first < ShortText);
    const std::size_t offset = pair.units[0].offset;
    // Only "ß" makes a match shorter than what is sought.
    const std::size_t shortest =
        Rule::Doubles ? std::max(offset, pair.units[1].offset) + 1 : sought.size();
    if (text.size() - first < shortest ||
        (Rule::EndsAtZero && text.substr(first, offset).find(u'\0') != text.npos)) {
        return;
    }
    std::size_t work = 0;
    std::size_t outOfProportion = NoMatch;
    const auto stop = [&](std::size_t place) {
        const std::size_t covered =
            Rule::Match(text.data() + place, text.data() + text.size(), sought, work);
        if (covered != NoMatch && accept(TextMatch{place, covered})) {
            return true;
        }
        if (work > 1024 + 4 * (place - first)) {
            outOfProportion = place + 1;
            return true;
        }
        return false;
    };
    const std::size_t last = text.size() - shortest + 1;
    const auto scan = [&]<std::size_t Alternatives> {
        ScanPair<Alternatives, Rule::EndsAtZero>(text.data(), first, last, pair, vectors, stop);
    };
    if constexpr (Rule::EndsAtZero) {
        scan.template operator()<1>();
    } else {
        switch (AlternativesIn(pair)) {
            case 1:
                scan.template operator()<1>();
                break;
            case 2:
                scan.template operator()<2>();
                break;
            default:
                scan.template operator()<3>();
        }
    }
    if (outOfProportion != NoMatch) {
        FindByAutomaton<Rule>(text, sought, outOfProportion, accept);
    }
}

/// Calls `accept` for each match from `first` on, in ascending order, until it says true.
template <class Accept>
void FindEach(std::u16string_view text, std::u16string_view sought, std::size_t first,
              bool matchCase, bool vectors, Accept& accept) {
    if (sought.empty()) {
        while (first < text.size() && !accept(TextMatch{first, 0})) {
            ++first;
        }
    } else if (matchCase) {
        FindByPair<Exactly>(text, sought, first, vectors, accept);
    } else if (sought.find(SharpS) != sought.npos || sought.find(u"SS") != sought.npos) {
        FindByPair<WithSharpS>(text, sought, first, vectors, accept);
    } else {
        FindByPair<WithoutCase>(text, sought, first, vectors, accept);
    }
}

/// Whether the neighbours of a match are separators. A match whose length reaches behind a U+0000
/// may seem to pass the end of the text; it then runs to the end.
bool StandsAlone(std::u16string_view text, const TextMatch& match) {
    const std::size_t left = text.size() - match.position;
    return (match.position == 0 || IsSeparator(text[match.position - 1])) &&
           (match.length >= left || IsSeparator(text[match.position + match.length]));
}

}  // namespace

std::optional<TextMatch> FindText(std::u16string_view text, std::u16string_view sought,
                                  std::size_t start, SearchOptions options, bool vectors) {
    std::optional<TextMatch> result;  // the only thing returned, so that it is made in its place
    if (start >= text.size()) {
        return result;
    }
    const std::u16string_view units =
        options.matchCase ? sought.substr(0, sought.find(u'\0')) : sought;
    const auto accept = [&](TextMatch match) {
        if (options.matchCase) {
            match.length = sought.size();
        }
        if (options.wholeWord && !StandsAlone(text, match)) {
            return false;
        }
        result = match;
        return true;
    };
    FindEach(text, units, start, options.matchCase, vectors, accept);
    return result;
}

std::optional<TextMatch> FindText(std::u16string_view text, std::u16string_view sought,
                                  std::size_t start, SearchOptions options) {
    return FindText(text, sought, start, options, HasAvx2());
}

}  // namespace generalutilities
