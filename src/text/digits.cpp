// Digits of all scripts by code unit: the rows below are turned into a table while compiling. They
// are the system's own choice, since what is equal to "7" must not change with the machine's
// version of Unicode.

#include <generalutilities/text/digits.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace generalutilities {
namespace {

/// Code units with ascending values; `first` has the value `value`.
struct DigitRow {
    char16_t first;
    char16_t last;
    std::uint8_t value;
};

constexpr DigitRow Digits[] = {
    {0x0660, 0x0669, 0}, {0x06F0, 0x06F9, 0},  // Arabic-Indic, extended
    {0x0966, 0x096F, 0}, {0x09E6, 0x09EF, 0}, {0x0A66, 0x0A6F, 0}, {0x0AE6, 0x0AEF, 0},
    {0x0B66, 0x0B6F, 0}, {0x0C66, 0x0C6F, 0}, {0x0CE6, 0x0CEF, 0}, {0x0D66, 0x0D6F, 0},  // Indic
    {0x0BE7, 0x0BEF, 1},                                            // Tamil, without a zero
    {0x09F4, 0x09F7, 1},                                            // Bengali numerators
    {0x0E50, 0x0E59, 0}, {0x0ED0, 0x0ED9, 0},                       // Thai, Lao
    {0x0F20, 0x0F29, 0}, {0x1040, 0x1049, 0},                       // Tibetan, Burmese
    {0x1369, 0x1371, 1},                                            // Ethiopic, without a zero
    {0x17E0, 0x17E9, 0}, {0x17F0, 0x17F9, 0},                       // Khmer, divination
    {0x1810, 0x1819, 0}, {0x1946, 0x194F, 0},                       // Mongolian, Limbu
    {0x00B2, 0x00B3, 2}, {0x00B9, 0x00B9, 1}, {0x2070, 0x2070, 0},  // superscripts
    {0x2074, 0x2079, 4}, {0x2080, 0x2089, 0},                       // and subscripts
    {0x215F, 0x215F, 1},                                            // numerator one
    {0x2160, 0x2168, 1}, {0x2170, 0x2178, 1},                       // Roman
    {0x2460, 0x2468, 1}, {0x2474, 0x247C, 1}, {0x2488, 0x2490, 1},  // circled, in parentheses,
    {0x24EA, 0x24EA, 0}, {0x24F5, 0x24FD, 1}, {0x24FF, 0x24FF, 0},  // with full stop, doubly,
    {0x2776, 0x277E, 1}, {0x2780, 0x2788, 1}, {0x278A, 0x2792, 1},  // dingbats
    {0x3007, 0x3007, 0}, {0x3021, 0x3029, 1}, {0x3192, 0x3195, 1},  // ideographic zero, Hangzhou,
    {0x3220, 0x3228, 1}, {0x3280, 0x3288, 1},                       // annotation, enclosed
    {0x4E00, 0x4E00, 1}, {0x4E03, 0x4E03, 7}, {0x4E09, 0x4E09, 3}, {0x4E5D, 0x4E5D, 9},
    {0x4E8C, 0x4E8C, 2}, {0x4E94, 0x4E94, 5}, {0x4F0D, 0x4F0D, 5}, {0x5169, 0x5169, 2},
    {0x516B, 0x516B, 8}, {0x516D, 0x516D, 6}, {0x53C1, 0x53C1, 3}, {0x53C2, 0x53C2, 3},
    {0x53C3, 0x53C3, 3}, {0x56DB, 0x56DB, 4}, {0x58F1, 0x58F1, 1}, {0x58F9, 0x58F9, 1},
    {0x5F0C, 0x5F0C, 1}, {0x5F0D, 0x5F0D, 2}, {0x5F0E, 0x5F0E, 3}, {0x5F10, 0x5F10, 2},
    {0x634C, 0x634C, 8}, {0x67D2, 0x67D2, 7}, {0x7396, 0x7396, 9}, {0x8086, 0x8086, 4},
    {0x8CAE, 0x8CAE, 2}, {0x8D30, 0x8D30, 2}, {0x9646, 0x9646, 6}, {0x9678, 0x9678, 6},
    {0x96F6, 0x96F6, 0},  // Han, plain and financial
    {0xFF10, 0xFF19, 0},  // fullwidth
};

/// Numerals whose value is no single digit.
struct NumeralRow {
    char16_t first;
    char16_t last;
};

constexpr NumeralRow Numerals[] = {
    {0x00BC, 0x00BE}, {0x09F9, 0x09F9}, {0x0BF0, 0x0BF2}, {0x0F2A, 0x0F33}, {0x1372, 0x137C},
    {0x16EE, 0x16F0}, {0x2153, 0x215E}, {0x2169, 0x216F}, {0x2179, 0x2182}, {0x2469, 0x2473},
    {0x247D, 0x2487}, {0x2491, 0x249B}, {0x24EB, 0x24F4}, {0x24FE, 0x24FE}, {0x277F, 0x277F},
    {0x2789, 0x2789}, {0x2793, 0x2793}, {0x3038, 0x303A}, {0x3229, 0x3229}, {0x3251, 0x325F},
    {0x3289, 0x3289}, {0x32B1, 0x32BF}, {0x4E07, 0x4E07}, {0x4EBF, 0x4EBF}, {0x4EDF, 0x4EDF},
    {0x4F70, 0x4F70}, {0x5104, 0x5104}, {0x5146, 0x5146}, {0x5341, 0x5341}, {0x5343, 0x5343},
    {0x5345, 0x5345}, {0x5EFF, 0x5EFF}, {0x62FE, 0x62FE}, {0x767E, 0x767E}, {0x842C, 0x842C},
    {0x964C, 0x964C},
};

constexpr char OtherNumeral = 1;

/// For each code unit its digit, `OtherNumeral`, or 0 for neither. One entry a unit, since a lookup
/// in two stages takes twice as long; a text touches only the lines of its scripts.
constexpr auto Table = [] {
    std::array<char, 0x10000> table{};
    for (const DigitRow& run : Digits) {
        for (char16_t unit = run.first; unit <= run.last; ++unit) {
            table[unit] = static_cast<char>('0' + run.value + (unit - run.first));
        }
    }
    for (const NumeralRow& run : Numerals) {
        std::fill(table.begin() + run.first, table.begin() + run.last + 1, OtherNumeral);
    }
    return table;
}();

constexpr std::size_t BlockSize = 64;

/// Whether a block holds only Latin, Greek, Cyrillic, Hebrew and their punctuation, where the table
/// has nothing but superscripts and fractions. A loop that compilers turn into vector code.
bool IsFarFromDigits(const char16_t* block) {
    std::uint16_t found = 0;
    for (std::size_t i = 0; i < BlockSize; ++i) {
        const std::uint16_t unit = block[i];
        // The middle dot between them is a mark of Greek and Catalan.
        const int smallOnes = (static_cast<std::uint16_t>(unit - 0x00B2) <= 0x00BE - 0x00B2) &
                              static_cast<int>(unit != 0x00B7);
        const bool punctuation = static_cast<std::uint16_t>(unit - 0x1950) < 0x2070 - 0x1950;
        found = static_cast<std::uint16_t>(
            found | (smallOnes | ((unit >= 0x0660) & static_cast<int>(!punctuation))));
    }
    return found == 0;
}

bool HasNothing(const char16_t* block) {
    int found = 0;
    for (std::size_t i = 0; i < BlockSize; i += 4) {
        found |= Table[block[i]] | Table[block[i + 1]] | Table[block[i + 2]] | Table[block[i + 3]];
    }
    return found == 0;
}

}  // namespace

void FoldDigitsTo(std::u16string_view text, bool mapAllNumerals, char16_t* out) {
    const char other = mapAllNumerals ? '0' : 0;
    while (!text.empty()) {
        const std::size_t size = std::min(text.size(), BlockSize);
        if (size == BlockSize && (IsFarFromDigits(text.data()) || HasNothing(text.data()))) {
            std::array<char16_t, BlockSize> block;  // so that no call is made to copy it
            std::memcpy(block.data(), text.data(), sizeof block);
            std::memcpy(out, block.data(), sizeof block);
        } else {
            for (std::size_t i = 0; i < size; ++i) {
                const char entry = Table[text[i]];
                const char digit = entry == OtherNumeral ? other : entry;
                out[i] = digit != 0 ? static_cast<char16_t>(digit) : text[i];
            }
        }
        text.remove_prefix(size);
        out += size;
    }
}

std::u16string FoldDigits(std::u16string_view text, bool mapAllNumerals) {
    std::u16string result(text.size(), u'\0');
    FoldDigitsTo(text, mapAllNumerals, result.data());
    return result;
}

}  // namespace generalutilities
