#include <generalutilities/text/search.h>

#include "text/char_tables.h"

namespace generalutilities {
namespace {

constexpr char16_t SharpS = 0x00DF;

bool StartsWithCapitalSS(std::u16string_view text) {
    return text.size() >= 2 && text[0] == u'S' && text[1] == u'S';
}

/// The number of code units at the beginning of `text` that `sought` matches when case does not
/// count; nothing when it does not match.
std::optional<std::size_t> MatchFolded(std::u16string_view text, std::u16string_view sought) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < sought.size(); ++i) {
        if (at == text.size()) {
            return std::nullopt;
        }
        const char16_t unit = text[at];
        if (unit == sought[i]) {
            ++at;
        } else if (unit == SharpS) {
            if (!StartsWithCapitalSS(sought.substr(i))) {
                return std::nullopt;
            }
            ++at;
            ++i;
        } else if (sought[i] == SharpS) {
            if (!StartsWithCapitalSS(text.substr(at))) {
                return std::nullopt;
            }
            at += 2;
        } else if (UpperCase(unit) == UpperCase(sought[i])) {
            ++at;
        } else {
            return std::nullopt;
        }
    }
    return at;
}

std::u16string_view UpToZero(std::u16string_view text) {
    return text.substr(0, text.find(u'\0'));
}

std::optional<TextMatch> NextCandidate(std::u16string_view text, std::u16string_view sought,
                                       std::size_t start, bool matchCase) {
    if (matchCase) {
        const std::size_t at = UpToZero(text.substr(start)).find(UpToZero(sought));
        if (at == text.npos) {
            return std::nullopt;
        }
        return TextMatch{start + at, sought.size()};
    }
    for (; start < text.size(); ++start) {
        if (const auto length = MatchFolded(text.substr(start), sought)) {
            return TextMatch{start, *length};
        }
    }
    return std::nullopt;
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
                                  std::size_t start, SearchOptions options) {
    while (start < text.size()) {
        const auto match = NextCandidate(text, sought, start, options.matchCase);
        if (!match || !options.wholeWord || StandsAlone(text, *match)) {
            return match;
        }
        start = match->position + 1;
    }
    return std::nullopt;
}

}  // namespace generalutilities
