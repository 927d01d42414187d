#include <generalutilities/text/distance.h>

#include "case_table.h"
#include "platform/cpu.h"
#include "text/distance_forms.h"
#include "textbook.h"

#include <bit>
#include <limits>
#include <random>

namespace generalutilities {
namespace {

TEST(EditDistance, FollowsEveryRule) {
    for (const auto& row : CaseTable("distance.tsv")) {
        EXPECT_EQ(EditDistance(row[0], row[1], std::stod(Bytes(row[2]))), std::stod(Bytes(row[3])))
            << testing::PrintToString(row);
    }
}

/// A copy of a text with some edits, a third of them changes of case.
std::u16string Edited(std::u16string text, std::u16string_view alphabet, std::size_t edits,
                      std::mt19937& random) {
    for (; edits > 0; --edits) {
        const std::size_t at = random() % (text.size() + 1);
        const char16_t unit = alphabet[random() % alphabet.size()];
        switch (at == text.size() ? 0 : random() % 6) {
            case 0:
                text.insert(at, 1, unit);
                break;
            case 1:
                text.erase(at, 1);
                break;
            case 2:
            case 3:
                text[at] = unit;
                break;
            default:
                text[at] =
                    UpperCase(text[at]) == text[at] ? LowerCase(text[at]) : UpperCase(text[at]);
        }
    }
    return text;
}

TEST(EditDistance, AgreesWithTheTextbookToTheLastBit) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::u16string ideographs;
    for (char16_t unit = 0x4E00; unit < 0x4F00; ++unit) {
        ideographs += unit;
    }
    const std::u16string_view alphabets[] = {u"aA", u"abAB", u"etaoinshrdluETAOINSHRDLU ,.",
                                             u"\u03A3\u03C3\u03C2\u0416\u0436", ideographs};
    const std::size_t lengths[] = {0, 1, 5, 12, 40, 63, 64, 65, 130, 300, 700};
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();
    const double penalties[] = {1.0,       0.0,  0.1,  0.5,    0.3,      1e-17,    0.999,
                                1.0000001, 1.7,  2.0,  3.0,    1e300,    Infinity, NoNumber,
                                -0.0,      -0.1, -1.0, -1e300, -Infinity};
    for (int round = 0; round < 1500; ++round) {
        const std::u16string_view alphabet = alphabets[random() % std::size(alphabets)];
        std::u16string first(lengths[random() % (round % 10 == 0 ? 11 : 9)], u'\0');
        for (char16_t& unit : first) {
            unit = alphabet[random() % alphabet.size()];
        }
        const std::u16string second =
            Edited(first, alphabet, random() % (first.size() / (1 + random() % 8) + 3), random);
        for (int i = 0; i < 3; ++i) {
            const double penalty = penalties[random() % std::size(penalties)];
            const double expected = textbook::Distance(first, second, penalty);
            for (const double got : {EditDistance(first, second, penalty, HasAvx2()),
                                     EditDistance(second, first, penalty, HasAvx2()),
                                     EditDistance(first, second, penalty, false)}) {
                ASSERT_EQ(std::bit_cast<std::uint64_t>(got), std::bit_cast<std::uint64_t>(expected))
                    << testing::PrintToString(first) << " and " << testing::PrintToString(second)
                    << " at " << penalty << ": " << got << ", not " << expected;
            }
        }
    }
}

}  // namespace
}  // namespace generalutilities
