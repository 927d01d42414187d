// The tables are checked for all 65,536 code units against ICU, which holds the data of a later
// Unicode version: what a character's age says was there already must agree, but for the changes
// and the peculiarities that are listed here.

#include "text/char_tables.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <vector>

namespace generalutilities {
namespace {

struct Range {
    int first;
    int last;
};

bool IsIn(const std::vector<Range>& ranges, int unit) {
    return std::any_of(ranges.begin(), ranges.end(), [unit](const Range& range) {
        return unit >= range.first && unit <= range.last;
    });
}

bool ExistedIn(int unit, int major, int minor) {
    UVersionInfo age;
    u_charAge(unit, age);
    return age[0] != 0 && std::pair<int, int>(age[0], age[1]) <= std::pair(major, minor);
}

/// Categories that Unicode gave another value after 3.2.
const std::map<int, std::vector<Range>> CategoriesBefore = {
    {U_OTHER_SYMBOL,
     {{0xA7, 0xA7}, {0xB6, 0xB6}, {0xF14, 0xF14}, {0x2118, 0x2118}, {0x2132, 0x2132}}},
    {U_LOWERCASE_LETTER,
     {{0xAA, 0xAA}, {0xBA, 0xBA}, {0x294, 0x294}, {0x2071, 0x2071}, {0x207F, 0x207F}}},
    {U_DASH_PUNCTUATION, {{0xAD, 0xAD}}},
    {U_MODIFIER_SYMBOL, {{0x2B9, 0x2BA}, {0x2C6, 0x2CF}, {0x2EC, 0x2EC}, {0x374, 0x374}}},
    {U_OTHER_PUNCTUATION, {{0x5BE, 0x5BE}, {0x166D, 0x166D}, {0x23B6, 0x23B6}}},
    {U_ENCLOSING_MARK, {{0x6DE, 0x6DE}}},
    {U_OTHER_LETTER, {{0x10D0, 0x10F8}, {0x13A0, 0x13F4}, {0x1885, 0x1886}, {0xA015, 0xA015}}},
    {U_DECIMAL_DIGIT_NUMBER, {{0x1369, 0x1371}}},
    {U_NON_SPACING_MARK, {{0x1734, 0x1734}, {0x302E, 0x302F}}},
    {U_COMBINING_SPACING_MARK, {{0x17B4, 0x17B5}}},
    {U_SPACE_SEPARATOR, {{0x200B, 0x200B}}},
    {U_LETTER_NUMBER, {{0x2183, 0x2183}}},
    {U_MATH_SYMBOL, {{0x2308, 0x230B}}},
    {U_START_PUNCTUATION, {{0x23B4, 0x23B4}, {0xFD3E, 0xFD3E}}},
    {U_END_PUNCTUATION, {{0x23B5, 0x23B5}, {0xFD3F, 0xFD3F}}},
    {U_CONNECTOR_PUNCTUATION, {{0x30FB, 0x30FB}, {0xFF65, 0xFF65}}},
};

int CategoryOfThreeTwo(int unit) {
    if (!ExistedIn(unit, 3, 2)) {
        return U_UNASSIGNED;
    }
    for (const auto& [category, ranges] : CategoriesBefore) {
        if (IsIn(ranges, unit)) {
            return category;
        }
    }
    return u_charType(static_cast<UChar32>(unit));
}

/// By ICU's categories, in the order of their numbers.
constexpr int CategoryNumbers[] = {0x00, 0x10, 0x11, 0x12, 0x13, 0x14, 0x18, 0x1A, 0x19, 0x08,
                                   0x09, 0x0A, 0x30, 0x31, 0x32, 0x38, 0x39, 0x3B, 0x3A, 0x29,
                                   0x2A, 0x2B, 0x28, 0x2E, 0x20, 0x21, 0x22, 0x23, 0x2C, 0x2D};

const std::vector<Range> Han = {{0x3006, 0x3007}, {0x3021, 0x3029}, {0x3038, 0x303A},
                                {0x3400, 0x4DB5}, {0x4E00, 0x9FA5}, {0xF900, 0xFA2D},
                                {0xFA30, 0xFA6A}};
const std::vector<Range> Katakana = {{0x3031, 0x3035}, {0x3099, 0x309C}, {0x30A1, 0x30FE},
                                     {0x31F0, 0x31FF}, {0x32D0, 0x32FE}, {0xFF65, 0xFF9F}};
const std::vector<Range> Hiragana = {{0x3041, 0x3096}, {0x309D, 0x309F}, {0x30FF, 0x30FF}};

TEST(CharTables, CategoriesAreThoseOfUnicodeThreeTwoWithTheScriptFlags) {
    for (int unit = 0; unit < 0x10000; ++unit) {
        const int flags = (IsIn(Han, unit) ? 0x80 : 0) | (IsIn(Katakana, unit) ? 0x100 : 0) |
                          (IsIn(Hiragana, unit) ? 0x200 : 0);
        ASSERT_EQ(CharCategory(static_cast<char16_t>(unit)),
                  CategoryNumbers[CategoryOfThreeTwo(unit)] | flags)
            << std::hex << unit;
    }
}

TEST(CharTables, ClassesFollowFromCategoryAndScript) {
    for (int unit = 0; unit < 0x10000; ++unit) {
        const auto mask = U_MASK(CategoryOfThreeTwo(unit));
        const bool kana = IsIn(Katakana, unit) || IsIn(Hiragana, unit);
        const bool eastAsian = kana || IsIn(Han, unit);
        const bool letter = (mask & (U_GC_L_MASK | U_GC_M_MASK)) != 0;
        const bool number = (mask & U_GC_N_MASK) != 0;
        const auto c = static_cast<char16_t>(unit);
        ASSERT_EQ(IsLetter(c), letter && !kana) << std::hex << unit;
        ASSERT_EQ(IsNumber(c), number) << std::hex << unit;
        ASSERT_EQ(IsEastAsian(c), eastAsian) << std::hex << unit;
        ASSERT_EQ(IsSeparator(c), !letter && !number && !eastAsian) << std::hex << unit;
        ASSERT_NE(CharClasses(c), 0) << std::hex << unit;
    }
}

// The case pairs are the one-to-one pairs of the characters that Unicode 1.1 had, title case
// letters left out. The small capital R got its partner later; the final sigma shares its capital;
// Georgian has its old pairs, in one direction.
bool IsOldPair(int small, int capital) {
    return small != capital && ExistedIn(small, 1, 1) && ExistedIn(capital, 1, 1) &&
           u_tolower(capital) == small && u_toupper(small) == capital &&
           u_charType(capital) != U_TITLECASE_LETTER && small != 0x280;
}

TEST(CharTables, CasePartnersAreOldOneToOnePairs) {
    int capitals = 0;
    int smalls = 0;
    for (int unit = 0; unit < 0x10000; ++unit) {
        int upper = IsOldPair(unit, u_toupper(unit)) ? u_toupper(unit) : unit;
        int lower = IsOldPair(u_tolower(unit), unit) ? u_tolower(unit) : unit;
        if (unit == 0x3C2) {
            upper = 0x3A3;
        } else if (unit >= 0x10A0 && unit <= 0x10C5) {
            lower = unit + 0x30;
        }
        const auto c = static_cast<char16_t>(unit);
        ASSERT_EQ(UpperCase(c), upper) << std::hex << unit;
        ASSERT_EQ(LowerCase(c), lower) << std::hex << unit;
        capitals += upper != unit;
        smalls += lower != unit;
    }
    EXPECT_EQ(capitals, 636);
    EXPECT_EQ(smalls, 673);
}

std::u16string Decomposition(int unit) {
    static const std::map<int, std::u16string> changed = {{0x321D, u"(\uC624\uC804)"},
                                                          {0x321E, u"(\uC624\uD6C4)"},
                                                          {0x327C, u"\uCC38\uACE0"},
                                                          {0x327D, u"\uC8FC\uC758"}};
    if (const auto found = changed.find(unit); found != changed.end()) {
        return found->second;
    }
    const bool hangul = unit >= 0xAC00 && unit <= 0xD7A3;
    if (hangul || !ExistedIn(unit, 4, 0)) {
        return {};
    }
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* compatibility = unorm2_getNFKCInstance(&status);
    char16_t buffer[32];
    const int length =
        unorm2_getRawDecomposition(compatibility, unit, buffer, std::size(buffer), &status);
    return length > 0 ? std::u16string(buffer, static_cast<std::size_t>(length)) : u"";
}

/// The plain parts in order, without marks, and behind them the folds of the other parts.
std::u16string SlowFold(int unit) {
    std::u16string plain;
    std::u16string rest;
    for (const char16_t part : Decomposition(unit)) {
        if (!Decomposition(part).empty()) {
            rest += SlowFold(part);
        } else if ((U_GET_GC_MASK(part) & U_GC_M_MASK) == 0) {
            plain += part;
        }
    }
    return plain + rest;
}

TEST(CharTables, AccentFoldsFollowFromTheDecompositionsOfUnicodeFour) {
    int folds = 0;
    for (int unit = 0; unit < 0x10000; ++unit) {
        const char16_t entry = AccentFoldEntry(static_cast<char16_t>(unit));
        std::u16string fold;
        if (IsFoldSequence(entry)) {
            const std::uint16_t* units = AccentFoldSequence(entry);
            fold.assign(units, units + AccentFoldSequenceLength(entry));
        } else if (entry != 0) {
            fold = entry;
        }
        ASSERT_EQ(fold, SlowFold(unit)) << std::hex << unit;
        folds += !fold.empty();
    }
    EXPECT_EQ(folds, 3637);
}

}  // namespace
}  // namespace generalutilities
