// The tokens of both texts become numbers, what they share at both ends is set aside, and the
// greedy shortest-edit walk (Myers) compares the middle. The walk keeps its furthest points of each
// round to trace the way back; the number of rounds is bounded.

#include <generalutilities/project/word_diff.h>
#include <generalutilities/text/words.h>

#include <algorithm>
#include <unordered_map>

namespace generalutilities {
namespace {

constexpr std::int32_t MaximumRounds = 400;

/// Tokens that both sequences have, as stretches of token indexes.
struct Match {
    std::size_t oldFirst;
    std::size_t newFirst;
    std::size_t length;
};

using Sequence = std::vector<std::int32_t>;

/// The matches of `a[first..aEnd)` and `b[first..bEnd)`, in order; none when they differ too much.
std::vector<Match> MatchMiddle(const Sequence& a, const Sequence& b, std::size_t first,
                               std::size_t aEnd, std::size_t bEnd) {
    const auto n = static_cast<std::int32_t>(aEnd - first);
    const auto m = static_cast<std::int32_t>(bEnd - first);
    const std::int32_t limit = std::min(n + m, MaximumRounds);
    // furthest[d][k + d]: how far round d came in `a` on the diagonal k = x - y.
    std::vector<std::vector<std::int32_t>> furthest;
    const auto at = [&furthest](std::int32_t d, std::int32_t k) -> std::int32_t& {
        return furthest[static_cast<std::size_t>(d)][static_cast<std::size_t>(std::int64_t{k} + d)];
    };
    const auto goesDown = [&at](std::int32_t d, std::int32_t k) {
        return k == -d || (k != d && at(d - 1, k - 1) < at(d - 1, k + 1));
    };
    const auto start = [&](std::int32_t d, std::int32_t k) {
        return d == 0 ? 0 : goesDown(d, k) ? at(d - 1, k + 1) : at(d - 1, k - 1) + 1;
    };
    const auto same = [&](std::int32_t x, std::int32_t y) {
        return a[first + static_cast<std::size_t>(x)] == b[first + static_cast<std::size_t>(y)];
    };
    std::int32_t rounds = -1;
    for (std::int32_t d = 0; d <= limit && rounds < 0; ++d) {
        furthest.emplace_back(static_cast<std::size_t>(std::int64_t{2} * d + 1), 0);
        for (std::int32_t k = -d; k <= d; k += 2) {
            std::int32_t x = start(d, k);
            std::int32_t y = x - k;
            while (x < n && y < m && y >= 0 && same(x, y)) {
                ++x;
                ++y;
            }
            at(d, k) = x;
            if (x >= n && y >= m) {
                rounds = d;
                break;
            }
        }
    }
    std::vector<Match> matches;
    std::int32_t k = n - m;
    for (std::int32_t d = rounds; d >= 0; --d) {
        const std::int32_t end = at(d, k);
        const std::int32_t begin = start(d, k);
        if (end > begin) {
            matches.push_back({first + static_cast<std::size_t>(begin),
                               first + static_cast<std::size_t>(begin - k),
                               static_cast<std::size_t>(end - begin)});
        }
        if (d > 0) {
            k += goesDown(d, k) ? 1 : -1;
        }
    }
    std::reverse(matches.begin(), matches.end());
    return matches;
}

/// Whether a stretch that two changes share is nothing to a reader: a blank or two.
bool IsOnlyBlanks(std::u16string_view text) {
    return text.size() <= 2 && std::all_of(text.begin(), text.end(), [](char16_t unit) {
               return unit == u' ' || unit == 0x00A0 || unit == u'\t';
           });
}

/// Appends a stretch, joining differing ones.
void Append(std::vector<DiffStretch>& stretches, const DiffStretch& stretch) {
    if (stretch.oldLength == 0 && stretch.newLength == 0) {
        return;
    }
    if (!stretches.empty() && stretches.back().same == stretch.same) {
        stretches.back().oldLength += stretch.oldLength;
        stretches.back().newLength += stretch.newLength;
        return;
    }
    stretches.push_back(stretch);
}

}  // namespace

std::vector<DiffStretch> CompareWords(std::u16string_view oldText, std::u16string_view newText,
                                      std::int32_t langId) {
    const WordParser parser(langId);
    std::vector<TextToken> oldTokens;
    std::vector<TextToken> newTokens;
    parser.ParseAll(oldText, oldTokens);
    parser.ParseAll(newText, newTokens);

    std::unordered_map<std::u16string_view, std::int32_t> numbers;
    const auto number = [&numbers](std::u16string_view text, const std::vector<TextToken>& tokens) {
        Sequence sequence;
        sequence.reserve(tokens.size());
        for (const TextToken& token : tokens) {
            const auto first = static_cast<std::size_t>(token.first);
            const auto word = text.substr(first, static_cast<std::size_t>(token.end) - first);
            sequence.push_back(
                numbers.try_emplace(word, static_cast<std::int32_t>(numbers.size())).first->second);
        }
        return sequence;
    };
    const Sequence a = number(oldText, oldTokens);
    const Sequence b = number(newText, newTokens);

    std::size_t prefix = 0;
    while (prefix < a.size() && prefix < b.size() && a[prefix] == b[prefix]) {
        ++prefix;
    }
    std::size_t aEnd = a.size();
    std::size_t bEnd = b.size();
    while (aEnd > prefix && bEnd > prefix && a[aEnd - 1] == b[bEnd - 1]) {
        --aEnd;
        --bEnd;
    }
    std::vector<Match> matches{{0, 0, prefix}};
    const std::vector<Match> middle = MatchMiddle(a, b, prefix, aEnd, bEnd);
    matches.insert(matches.end(), middle.begin(), middle.end());
    matches.push_back({aEnd, bEnd, a.size() - aEnd});

    // Where the token with an index starts in its text; behind the last token the text's end.
    const auto startOf = [](std::u16string_view text, const std::vector<TextToken>& tokens,
                            std::size_t index) {
        return index < tokens.size() ? static_cast<std::size_t>(tokens[index].first) : text.size();
    };
    std::vector<DiffStretch> stretches;
    std::size_t oldAt = 0;
    std::size_t newAt = 0;
    for (const Match& match : matches) {
        const std::size_t oldFirst = startOf(oldText, oldTokens, match.oldFirst);
        const std::size_t newFirst = startOf(newText, newTokens, match.newFirst);
        const std::size_t length =
            startOf(oldText, oldTokens, match.oldFirst + match.length) - oldFirst;
        Append(stretches, {false, oldAt, oldFirst - oldAt, newAt, newFirst - newAt});
        const bool between = oldFirst > 0 && oldFirst + length < oldText.size();
        Append(stretches, {!(between && IsOnlyBlanks(oldText.substr(oldFirst, length))), oldFirst,
                           length, newFirst, length});
        oldAt = oldFirst + length;
        newAt = newFirst + length;
    }
    return stretches;
}

}  // namespace generalutilities
