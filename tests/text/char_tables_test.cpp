// The tables are checked for all 65,536 code units. Categories and folds stand beside ICU, which
// holds the data of a later Unicode version: what a character's age says was there already must
// agree, but for the changes and the peculiarities that are listed here and in data/.

#include "text/char_tables.h"

#include "case_table.h"

#include <map>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>

namespace generalutilities {
namespace {

bool ExistedIn(int unit, int major, int minor) {
    UVersionInfo age;
    u_charAge(unit, age);
    return age[0] != 0 && std::pair<int, int>(age[0], age[1]) <= std::pair(major, minor);
}

TEST(CharTables, CategoriesAreThoseOfUnicodeThreeTwoWithTheScriptFlags) {
    std::vector<int> numbers;
    std::map<int, int> before;
    std::map<int, int> flags;
    for (const auto& row : CaseTable("categories.tsv")) {
        const int number = std::stoi(Bytes(row[0]), nullptr, 16);
        if (number < 0x80) {
            numbers.push_back(number);
        }
        std::istringstream ranges(row.size() > 2 ? Bytes(row[2]) : "");
        for (std::string range; ranges >> range;) {
            const int last = std::stoi(range.substr(range.find('-') + 1), nullptr, 16);
            for (int unit = std::stoi(range, nullptr, 16); unit <= last; ++unit) {
                (number < 0x80 ? before : flags)[unit] = number;
            }
        }
    }
    for (int unit = 0; unit < 0x10000; ++unit) {
        const int category = !ExistedIn(unit, 3, 2) ? 0
                             : before.contains(unit)
                                 ? before[unit]
                                 : numbers.at(static_cast<std::size_t>(u_charType(unit)));
        const int flag = flags.contains(unit) ? flags[unit] : 0;
        const auto c = static_cast<char16_t>(unit);
        ASSERT_EQ(CharCategory(c), category | flag) << std::hex << unit;

        const bool letter = category >= 0x10 && category <= 0x1A;
        const bool number = category >= 0x08 && category <= 0x0A;
        ASSERT_EQ(IsLetter(c), letter && flag < 0x100) << std::hex << unit;
        ASSERT_EQ(IsNumber(c), number) << std::hex << unit;
        ASSERT_EQ(IsEastAsian(c), flag != 0) << std::hex << unit;
        ASSERT_EQ(IsSeparator(c), !letter && !number && flag == 0) << std::hex << unit;
    }
}

TEST(CharTables, CasePartnersAreThoseOfTheRuns) {
    std::map<int, int> capitals;
    std::map<int, int> smalls;
    for (const auto& row : CaseTable("case_pairs.tsv")) {
        for (int unit = row[0][0]; unit <= row[1][0]; unit += Number(row[2])) {
            capitals[unit] = unit + Number(row[3]);
            smalls[capitals[unit]] = unit;
        }
    }
    smalls[0x3A3] = 0x3C3;  // the final sigma is nobody's small letter
    for (int unit = 0x10A0; unit <= 0x10C5; ++unit) {
        smalls[unit] = unit + 0x30;  // the Georgian pairs go one way
    }
    EXPECT_EQ(capitals.size(), 636u);
    EXPECT_EQ(smalls.size(), 673u);
    for (int unit = 0; unit < 0x10000; ++unit) {
        const auto c = static_cast<char16_t>(unit);
        ASSERT_EQ(UpperCase(c), capitals.contains(unit) ? capitals[unit] : unit) << unit;
        ASSERT_EQ(LowerCase(c), smalls.contains(unit) ? smalls[unit] : unit) << unit;
    }
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
