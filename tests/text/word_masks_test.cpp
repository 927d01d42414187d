// Texts that are cut by bit masks fall into the same tokens as those that are cut unit by unit.

#include "text/word_masks.h"

#include <generalutilities/text/words.h>

#include "platform/cpu.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace generalutilities {
namespace {

/// A text of fewer than 64 units is parsed unit by unit, a longer one by masks. The ideographs
/// around the units to be compared are tokens of their own, whatever stands beside them.
TEST(WordMasks, CutLongTextsIntoTheSameTokens) {
    constexpr std::u16string_view Units = u"ab'sS&{12}.,;  \\-\u00E9\u5B57\u30AB\u3007\uAC00";
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 20000; ++i) {
        std::u16string text = u"\u5B57";
        for (const auto size = random() % 60; text.size() < size;) {
            const auto run = random() % 20 == 0 ? random() % 50 : 1;
            text.append(run, Units[random() % Units.size()]);
        }
        text.resize(std::min<std::size_t>(text.size(), 60));
        text += u'\u5B57';
        const std::u16string before(random() % 64, u'\u5B57');
        const std::u16string behind(random() % 70, u'\u5B57');
        for (const std::int32_t language : {1033, 1036, 1043, 4}) {
            std::vector<TextToken> expected;
            std::vector<TextToken> tokens(random() % 100);
            const WordParser parser(language);
            parser.ParseAll(text, expected);
            parser.ParseAll(before + text + behind, tokens);
            for (std::size_t token = 0; token < expected.size(); ++token) {
                const auto shift = static_cast<std::int32_t>(before.size());
                const TextToken shifted = {expected[token].first + shift,
                                           expected[token].end + shift, expected[token].type};
                ASSERT_EQ(tokens.at(before.size() + token), shifted)
                    << testing::PrintToString(before + text);
            }
        }
    }
}

TEST(WordMasks, ByBlocksAreTheSameAsPlainly) {
    if (!HasAvx2()) {
        GTEST_SKIP() << "no processor for the vector form";
    }
    std::u16string text;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        text += static_cast<char16_t>(unit);
    }
    text += std::u16string(30, u'a') + u'\u00DF' + std::u16string(30, u'1');
    for (std::size_t at = 0; at + WordMasks::Units <= text.size(); at += 3) {
        const WordMasks plain = FindWordMasksPlainly(&text[at]);
        const WordMasks blocks = FindWordMasksByBlocks(&text[at]);
        ASSERT_EQ(blocks.letters, plain.letters) << at;
        ASSERT_EQ(blocks.eastAsian, plain.eastAsian) << at;
        ASSERT_EQ(blocks.special, plain.special) << at;
    }
}

}  // namespace
}  // namespace generalutilities
