// Words, numbers and codes in a text, and the keys made of them.

#include <generalutilities/text/words.h>

#include "case_table.h"
#include "text/tokens.h"

#include <map>
#include <numeric>

namespace generalutilities {
namespace {

TEST(ParseStep, FindsTokens) {
    for (const auto& row : CaseTable("parse_step.tsv")) {
        EXPECT_EQ(Describe(row[0], StepTokens(row[0], Number(row[2]))), row[1]);
    }
}

TEST(ParseStep, StartsAnywhereAndEndsBehindTheText) {
    const WordParser parser(1033);
    EXPECT_EQ(parser.ParseStep(u"don't", 2), (TextToken{2, 5, qlnwtWord}));
    EXPECT_EQ(parser.ParseStep(u"a .5", 2), (TextToken{2, 3, qlnwtSeparator}));
    EXPECT_EQ(parser.ParseStep(u"a..5", 2), (TextToken{2, 3, qlnwtSeparator}));
    EXPECT_EQ(parser.ParseStep(u"{12}", 1), (TextToken{1, 3, qlnwtDigit}));
    EXPECT_EQ(parser.ParseStep(u"abc", 3), std::nullopt);
    EXPECT_EQ(parser.ParseStep(u"abc", static_cast<std::size_t>(-1)), std::nullopt);
    EXPECT_EQ(parser.ParseStep(u"", 0), std::nullopt);
}

TEST(ParseAll, FindsTokens) {
    for (const auto& row : CaseTable("parse_all.tsv")) {
        EXPECT_EQ(Describe(row[0], AllTokens(row[0], Number(row[2]))), row[1]);
    }
}

TEST(Parsing, OfHostileTextsIsLinear) {
    for (const std::u16string& text : HostileTexts()) {
        for (const auto& tokens : {StepTokens(text, 1033), AllTokens(text, 1033)}) {
            ASSERT_FALSE(tokens.empty());
            EXPECT_EQ(static_cast<std::size_t>(tokens.back().end), text.size());
        }
    }
}

TEST(FoldBlanksAndCodes, LeavesOneSpaceForEachRun) {
    for (const auto& row : CaseTable("fold_blanks_and_codes.tsv")) {
        EXPECT_EQ(FoldBlanksAndCodes(row[0]), row[1]);
    }
}

TEST(ToIndex, MakesKeys) {
    for (const auto& row : CaseTable("to_index.tsv")) {
        EXPECT_EQ(ToIndex(row[0], Number(row[3]), Number(row[2])), row[1]);
    }
}

TEST(SimplifyString, ReplacesPunctuation) {
    std::u16string units(0xFFFF, u'\0');
    std::iota(units.begin(), units.end(), u'\1');
    std::u16string plain = units;
    for (const auto& row : CaseTable("simplify.tsv")) {
        for (const char16_t unit : row[1]) {
            plain[unit - 1u] = row[0][0];
        }
    }
    EXPECT_EQ(SimplifyString(units + u'\0' + units, 1033), plain);
    plain[u';' - 1u] = u'?';
    EXPECT_EQ(SimplifyString(units, 1032), plain);
}

TEST(NumberSeparators, FollowTheWholeIdentifier) {
    std::map<std::int32_t, std::u16string> expected;
    for (const auto& row : CaseTable("number_separators.tsv")) {
        std::istringstream langIds(Bytes(row[1]));
        for (std::int32_t langId = 0; langIds >> langId;) {
            expected[langId] = row[0];
        }
    }
    EXPECT_EQ(expected.size(), 219u);
    for (std::int32_t langId = -0x10000; langId < 0x20000; ++langId) {
        const auto [thousands, decimal, altThousands, altDecimal] =
            NumberSeparators::OfLanguage(langId);
        const auto row = expected.find(langId);
        ASSERT_EQ((std::u16string{thousands, decimal, altThousands, altDecimal}),
                  row == expected.end() ? std::u16string(4, u'\0') : row->second)
            << langId;
    }
}

}  // namespace
}  // namespace generalutilities
