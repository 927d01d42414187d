#pragma once

#include <generalutilities/text/search.h>

#include "text/char_tables.h"

#include <optional>
#include <string_view>
#include <vector>

/// Search and distance in their obvious forms: slow, without a thought for memory, and beyond
/// doubt. Tests and fuzz targets hold the library's forms against them.
namespace generalutilities::textbook {

/// How many units of both sides a comparison without case uses up.
struct Step {
    std::size_t inText = 0;
    std::size_t inSought = 0;
};

inline std::optional<Step> Compare(std::u16string_view text, std::u16string_view sought) {
    constexpr char16_t SharpS = 0xDF;
    if (text[0] == sought[0]) {
        return Step{1, 1};
    }
    if (text[0] == SharpS) {
        return sought.starts_with(u"SS") ? std::optional(Step{1, 2}) : std::nullopt;
    }
    if (sought[0] == SharpS) {
        return text.starts_with(u"SS") ? std::optional(Step{2, 1}) : std::nullopt;
    }
    return UpperCase(text[0]) == UpperCase(sought[0]) ? std::optional(Step{1, 1}) : std::nullopt;
}

inline std::optional<std::size_t> MatchLength(std::u16string_view text, std::u16string_view sought,
                                              bool matchCase) {
    const std::size_t wholeLength = sought.size();
    if (matchCase) {
        text = text.substr(0, text.find(u'\0'));
        sought = sought.substr(0, sought.find(u'\0'));
        return text.starts_with(sought) ? std::optional(wholeLength) : std::nullopt;
    }
    std::size_t length = 0;
    while (!sought.empty()) {
        const auto step = text.empty() ? std::nullopt : Compare(text, sought);
        if (!step) {
            return std::nullopt;
        }
        text.remove_prefix(step->inText);
        sought.remove_prefix(step->inSought);
        length += step->inText;
    }
    return length;
}

inline std::optional<TextMatch> Find(std::u16string_view text, std::u16string_view sought,
                                     std::size_t start, SearchOptions options) {
    bool behindZero = false;
    for (std::size_t i = start; i < text.size(); ++i) {
        const auto length = behindZero && options.matchCase && !sought.empty() && sought[0] != 0
                                ? std::nullopt
                                : MatchLength(text.substr(i), sought, options.matchCase);
        behindZero = behindZero || text[i] == 0;
        if (length && (!options.wholeWord ||
                       ((i == 0 || IsSeparator(text[i - 1])) &&
                        (i + *length >= text.size() || IsSeparator(text[i + *length]))))) {
            return TextMatch{i, *length};
        }
    }
    return std::nullopt;
}

/// The whole matrix, one cell after the other.
inline double Distance(std::u16string_view one, std::u16string_view other, double casePenalty) {
    std::vector<std::vector<double>> cell(one.size() + 1, std::vector<double>(other.size() + 1));
    for (std::size_t i = 0; i <= one.size(); ++i) {
        for (std::size_t j = 0; j <= other.size(); ++j) {
            if (i == 0 || j == 0) {
                cell[i][j] = static_cast<double>(i + j);
                continue;
            }
            const double cost = one[i - 1] == other[j - 1]                         ? 0.0
                                : LowerCase(one[i - 1]) == LowerCase(other[j - 1]) ? casePenalty
                                                                                   : 1.0;
            cell[i][j] = cell[i - 1][j] + 1.0;
            for (const double way : {cell[i][j - 1] + 1.0, cell[i - 1][j - 1] + cost}) {
                if (way < cell[i][j]) {
                    cell[i][j] = way;
                }
            }
        }
    }
    return cell[one.size()][other.size()];
}

}  // namespace generalutilities::textbook
