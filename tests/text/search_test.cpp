#include <generalutilities/text/search.h>

#include "textbook.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace generalutilities {

void PrintTo(const TextMatch& match, std::ostream* out) {
    *out << match.position << "+" << match.length;
}

namespace {

using namespace std::string_view_literals;

constexpr SearchOptions Folded{};
constexpr SearchOptions Exact{.matchCase = true};
constexpr SearchOptions Word{.wholeWord = true};
constexpr SearchOptions ExactWord{.matchCase = true, .wholeWord = true};

TEST(FindText, FollowsEveryRule) {
    constexpr std::size_t None = 999;
    struct {
        std::u16string_view text;
        std::u16string_view sought;
        std::size_t position;
        std::size_t length = 0;
        SearchOptions options = Folded;
        std::size_t start = 0;
    } const cases[] = {
        {u"Hello World", u"world", 6, 5},
        {u"Hello World", u"world", None, 0, Exact},
        {u"Stra\u00DFe", u"STRASSE", 0, 6},
        {u"STRASSE", u"stra\u00DFe", 0, 7},
        {u"strasse", u"stra\u00DFe", None},
        {u"Stra\u00DFe", u"strasse", None},
        {u"xS\u00DF", u"SSS", 1, 2},
        {u"\u00DFS", u"S\u00DF", None},  // no half of a sharp s
        {u"SSS", u"S\u00DF", 0, 3},
        {u"S\u00DF", u"\u00DFS", None},
        {u"\u00DF", u"S", None},
        {u"aS", u"\u00DF", None},
        {u"\u00C9T\u00C9", u"\u00E9t\u00E9", 0, 3},
        {u"\u00E9te", u"ete", None},
        {u"\u03A3\u03C3\u03C2", u"\u03C2\u03A3\u03C3", 0, 3},
        {u"the cat concat", u"cat", 4, 3, Word},
        {u"the cat concat", u"cat", 4, 3, Word, 4},
        {u"the cat concat", u"cat", None, 0, Word, 5},
        {u"catalog cat", u"cat", 8, 3, Word},
        {u"cat1 \u6F22cat cat\u6F22 (cat)", u"cat", 16, 3, ExactWord},
        {u"a-a-a", u"a-a", 0, 3, Word},
        {u"xa-a-a", u"a-a", 3, 3, Word},  // overlaps a refused one
        {u"abc", u"", 0, 0},
        {u"abc", u"", 1, 0, Exact, 1},
        {u"abc", u"", None, 0, Exact, 3},
        {u"ab  ", u"", 3, 0, Word, 1},
        {u"", u"", None},
        {u"ab", u"abc", None},
        {u"a\0b"sv, u"b", 2, 1},
        {u"a\0b"sv, u"b", None, 0, Exact},
        {u"a\0b"sv, u"b", 2, 1, Exact, 2},
        {u"a\0b"sv, u"\0b"sv, 1, 2},
        {u"xab"sv, u"a\0zz"sv, 1, 4, Exact},  // the whole length, though it passes the end
        {u"x ab a"sv, u"a\0zz"sv, 2, 4, ExactWord},
        {u"a\0b"sv, u"\0x"sv, 1, 2, Exact, 1},
        {u"\xD83D\xDE00\xDE00", u"\xDE00", 1, 1},
    };
    for (const auto& each : cases) {
        const auto match = FindText(each.text, each.sought, each.start, each.options);
        EXPECT_EQ(match, each.position == None
                             ? std::nullopt
                             : std::optional(TextMatch{each.position, each.length}))
            << testing::PrintToString(std::u16string(each.text)) << " in which "
            << testing::PrintToString(std::u16string(each.sought));
    }
}

/// Texts of few different units, so that near misses abound, at every alignment and length.
TEST(FindText, AgreesWithTheTextbook) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const std::u16string_view alphabets[] = {u"ab",
                                             u"aA ",
                                             u"sS\u00DF",
                                             u"\u03A3\u03C3\u03C2 a",
                                             u"SSSSs\u00DF-",
                                             u"\0aB"sv,
                                             u"\u0436\u0416\u042F \u4E00x"};
    for (int round = 0; round < 20000; ++round) {
        const std::u16string_view alphabet = alphabets[random() % std::size(alphabets)];
        const auto make = [&](std::size_t length) {
            std::u16string text(length, u'\0');
            for (char16_t& unit : text) {
                unit = alphabet[random() % alphabet.size()];
            }
            return text;
        };
        const std::u16string text = make(random() % 150);
        std::u16string sought = make(random() % 7);
        if (!text.empty() && random() % 2 == 0) {
            sought = text.substr(random() % text.size(), random() % 60);
        }
        for (const SearchOptions options : {Folded, Exact, Word, ExactWord}) {
            const std::size_t start = random() % 4 == 0 ? random() % (text.size() + 2) : 0;
            ASSERT_EQ(FindText(text, sought, start, options),
                      textbook::Find(text, sought, start, options))
                << testing::PrintToString(text) << " in which " << testing::PrintToString(sought)
                << " from " << start << " " << options.matchCase << options.wholeWord;
        }
    }
}

}  // namespace
}  // namespace generalutilities
