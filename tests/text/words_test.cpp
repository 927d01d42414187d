// Words, numbers and codes in a text, and the keys made of them.

#include <generalutilities/text/words.h>

#include "case_table.h"
#include "text/tokens.h"

#include <map>
#include <numeric>
#include <tuple>

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

TEST(ToIndex, NeverEndsInASpace) {
    const std::u16string_view text = u"a bb 12 c{1}d  ee, f 3,4 g";
    const std::u16string longest = ToIndex(text, 1033);
    EXPECT_EQ(longest, u"a bb c d ee, f g");
    for (std::int32_t size = 1; size < 20; ++size) {
        std::u16string expected = longest.substr(0, static_cast<std::size_t>(size));
        if (expected.back() == u' ') {
            expected.pop_back();
        }
        EXPECT_EQ(ToIndex(text, 1033, size), expected);
    }
}

TEST(SimplifyString, ReplacesPunctuation) {
    for (const auto& row : CaseTable("simplify.tsv")) {
        EXPECT_EQ(SimplifyString(row[0], Number(row[2])), row[1]);
    }
}

TEST(SimplifyString, ReplacesOneHundredAndNineteenUnits) {
    std::u16string units(0xFFFF, u'\0');
    std::iota(units.begin(), units.end(), u'\1');
    const std::u16string plain = SimplifyString(units, 1033);
    ASSERT_EQ(plain.size(), units.size());
    std::map<char16_t, int> counts;
    for (std::size_t i = 0; i < units.size(); ++i) {
        counts[plain[i]] += plain[i] != units[i];
    }
    std::erase_if(counts, [](const auto& each) { return each.second == 0; });
    const std::map<char16_t, int> expected = {{u'!', 3},  {u'"', 10}, {u'\'', 9}, {u'(', 31},
                                              {u')', 31}, {u',', 6},  {u'-', 16}, {u'.', 5},
                                              {u':', 2},  {u';', 2},  {u'?', 4}};
    EXPECT_EQ(counts, expected);
}

using Separators = std::tuple<char16_t, char16_t, char16_t, char16_t>;

Separators Of(std::int32_t langId) {
    const NumberSeparators found = NumberSeparators::OfLanguage(langId);
    return {found.thousands, found.decimal, found.altThousands, found.altDecimal};
}

const Separators None{};
const Separators PointAndComma(u',', u'.', 0, 0);
const Separators CommaAndBlank(u'\u00A0', u',', u' ', 0);
const Separators CommaAndPoint(u'.', u',', 0, 0);
const Separators PointAndApostrophe(u'\'', u'.', 0, 0);

TEST(NumberSeparators, FollowTheWholeIdentifier) {
    const std::pair<Separators, std::vector<std::int32_t>> cases[] = {
        {PointAndComma, {1025, 1033, 1072, 1078, 2057, 21514}},
        {CommaAndBlank, {1026, 1036, 58380}},
        {CommaAndPoint, {1027, 1031, 58378}},
        {PointAndApostrophe, {1047, 2055, 4108, 5127}},
        {None, {0, 9, 1024, 1131, 22538, 65536 + 1033, -1, -64503, 58379}},
    };
    for (const auto& [expected, langIds] : cases) {
        for (const std::int32_t langId : langIds) {
            EXPECT_EQ(Of(langId), expected) << langId;
        }
    }
}

TEST(NumberSeparators, AreKnownForTwoHundredAndNineteenLanguages) {
    std::map<Separators, int> counts;
    std::int64_t sumOfIds = 0;
    for (std::int32_t langId = 0; langId < 0x10000; ++langId) {
        ++counts[Of(langId)];
        sumOfIds += Of(langId) != None ? langId : 0;
    }
    EXPECT_EQ(counts[PointAndComma], 124);
    EXPECT_EQ(counts[CommaAndBlank], 41);
    EXPECT_EQ(counts[CommaAndPoint], 50);
    EXPECT_EQ(counts[PointAndApostrophe], 4);
    EXPECT_EQ(sumOfIds, 1007193);
}

}  // namespace
}  // namespace generalutilities
