#include <generalutilities/text/search.h>

#include "case_table.h"
#include "platform/cpu.h"
#include "text/search_forms.h"
#include "textbook.h"

#include <map>
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
    const std::map<std::u16string, SearchOptions> options = {
        {u"Folded", Folded}, {u"Exact", Exact}, {u"Word", Word}, {u"ExactWord", ExactWord}};
    for (const auto& row : CaseTable("find_text.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row));
        const auto number = [&](std::size_t i) { return static_cast<std::size_t>(Number(row[i])); };
        const auto match = FindText(row[0], row[1], number(5), options.at(row[4]));
        EXPECT_EQ(match,
                  row[2] == u"-1" ? std::nullopt : std::optional(TextMatch{number(2), number(3)}));
    }
}

/// Texts of few different units, so that near misses abound, at every alignment and length.
TEST(FindText, AgreesWithTheTextbook) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    constexpr std::u16string_view ZeroUnit = u"\0aB"sv;
    const std::u16string_view alphabets[] = {u"ab",      u"aA ",   u"sSß",        u"Σσς a",
                                             u"SSSSsß-", ZeroUnit, u"жЖЯ \u4E00x"};
    for (int round = 0; round < 20000; ++round) {
        const std::u16string_view alphabet = alphabets[random() % std::size(alphabets)];
        const auto make = [&](std::size_t length) {
            std::u16string text(length, u'\0');
            for (char16_t& unit : text) {
                unit = alphabet[random() % alphabet.size()];
            }
            return text;
        };
        std::u16string text = make(random() % 150);
        std::u16string sought = make(random() % 7);
        if (!text.empty() && random() % 2 == 0) {
            sought = text.substr(random() % text.size(), random() % 60);
        }
        if (round % 200 == 0) {  // so repetitive that comparing place by place is given up
            const std::u16string period = make(1 + random() % 3);
            while (text.size() < 3000) {
                text += random() % 50 == 0 ? make(1) : period;
            }
            sought = text.substr(random() % 2900, 100) + make(random() % 2);
        }
        for (const SearchOptions options : {Folded, Exact, Word, ExactWord}) {
            const std::size_t start = random() % 4 == 0 ? random() % (text.size() + 2) : 0;
            const auto expected = textbook::Find(text, sought, start, options);
            for (const bool vectors : {false, HasAvx2()}) {
                ASSERT_EQ(FindText(text, sought, start, options, vectors), expected)
                    << testing::PrintToString(text) << " in which "
                    << testing::PrintToString(sought) << " from " << start << " "
                    << options.matchCase << options.wholeWord << vectors;
            }
        }
    }
}

/// Each takes hours when the time is the product of the lengths.
TEST(FindText, TakesHostileTextsInOnePass) {
    constexpr std::size_t Size = 3'000'000;
    const std::u16string text = std::u16string(Size, u'a') + u"\u00DF";
    const std::u16string most(Size / 2, u'a');
    for (const SearchOptions options : {Folded, Exact, Word, ExactWord}) {
        EXPECT_EQ(FindText(text, most + u"b" + most.substr(1), 0, options), std::nullopt);
        EXPECT_EQ(FindText(text, u"b" + most, 0, options), std::nullopt);
        EXPECT_EQ(FindText(text, most, 1, options),
                  options.wholeWord ? std::nullopt : std::optional(TextMatch{1, Size / 2}));
        EXPECT_EQ(
            FindText(text, most + u"\u00DF", 0, options),
            options.wholeWord ? std::nullopt : std::optional(TextMatch{Size / 2, Size / 2 + 1}));
    }
    EXPECT_EQ(FindText(text, most + u"SS", 0, Folded), (TextMatch{Size / 2, Size / 2 + 1}));
}

}  // namespace
}  // namespace generalutilities
