// The number separators of the languages, as ranges of language identifiers. A sublanguage does not
// fall back to its primary language: an identifier outside all ranges has no separators.

#include <generalutilities/text/words.h>

#include <algorithm>
#include <iterator>

namespace generalutilities {
namespace {

/// Identifiers from `first` to `last`, both included.
struct LanguageRange {
    std::int32_t first;
    std::int32_t last;
};

// "1,000.5": English, Chinese, Hindi, Arabic of Saudi Arabia and others.
constexpr LanguageRange PointAndComma[] = {
    {1025, 1025},   {1028, 1028},   {1033, 1033},   {1037, 1037},   {1041, 1042},   {1054, 1054},
    {1056, 1056},   {1065, 1065},   {1067, 1067},   {1072, 1078},   {1081, 1082},   {1084, 1085},
    {1089, 1089},   {1093, 1103},   {1105, 1109},   {1111, 1121},   {1123, 1130},   {1136, 1139},
    {1141, 1141},   {1143, 1144},   {2049, 2049},   {2052, 2052},   {2057, 2058},   {2064, 2064},
    {2066, 2066},   {2080, 2080},   {2108, 2108},   {2117, 2118},   {2129, 2129},   {2137, 2137},
    {2143, 2145},   {2163, 2163},   {3073, 3073},   {3076, 3076},   {3081, 3081},   {4097, 4097},
    {4100, 4100},   {4105, 4106},   {5121, 5121},   {5124, 5124},   {5129, 5129},   {6145, 6145},
    {6153, 6154},   {7169, 7169},   {7177, 7178},   {7180, 7180},   {8193, 8193},   {8201, 8201},
    {9217, 9217},   {9225, 9225},   {10241, 10241}, {10249, 10250}, {11265, 11265}, {11273, 11273},
    {12289, 12289}, {12297, 12297}, {13313, 13313}, {13321, 13321}, {14337, 14337}, {14345, 14345},
    {14348, 14348}, {15361, 15361}, {15369, 15369}, {16385, 16385}, {16393, 16393}, {17417, 17418},
    {18441, 18442}, {19466, 19466}, {20490, 20490}, {21514, 21514}};

// "1 000,5", the blank being no-break: French, Russian, Swedish and others.
constexpr LanguageRange CommaAndBlank[] = {
    {1026, 1026},   {1029, 1029},   {1035, 1036},   {1038, 1038},  {1044, 1045},   {1049, 1049},
    {1051, 1051},   {1053, 1053},   {1058, 1059},   {1061, 1062},  {1064, 1064},   {1068, 1068},
    {1079, 1079},   {1083, 1083},   {1087, 1088},   {1090, 1092},  {1104, 1104},   {2068, 2068},
    {2073, 2073},   {2077, 2077},   {2092, 2092},   {2115, 2115},  {2128, 2128},   {3084, 3084},
    {5132, 5132},   {6156, 6156},   {8204, 8204},   {9228, 9228},  {10252, 10252}, {11276, 11276},
    {12300, 12300}, {13324, 13324}, {15372, 15372}, {58380, 58380}};

// "1.000,5": German, Italian, Spanish and others.
constexpr LanguageRange CommaAndPoint[] = {
    {1027, 1027},   {1030, 1032},   {1034, 1034},   {1039, 1040},   {1043, 1043},   {1046, 1046},
    {1048, 1048},   {1050, 1050},   {1052, 1052},   {1055, 1055},   {1057, 1057},   {1060, 1060},
    {1063, 1063},   {1066, 1066},   {1069, 1071},   {1080, 1080},   {1086, 1086},   {1110, 1110},
    {1122, 1122},   {1140, 1140},   {1142, 1142},   {1145, 1145},   {2060, 2060},   {2067, 2067},
    {2070, 2070},   {2072, 2072},   {2074, 2074},   {2087, 2087},   {2110, 2110},   {3079, 3079},
    {3082, 3082},   {3098, 3098},   {4103, 4103},   {4122, 4122},   {5130, 5130},   {8200, 8200},
    {8202, 8202},   {9226, 9226},   {11274, 11274}, {12298, 12298}, {13322, 13322}, {14346, 14346},
    {15370, 15370}, {16394, 16394}, {58378, 58378}};

// "1'000.5": Switzerland and Liechtenstein.
constexpr LanguageRange PointAndApostrophe[] = {
    {1047, 1047}, {2055, 2055}, {4108, 4108}, {5127, 5127}};

/// The ranges of an array are in order and do not overlap.
template <std::size_t Count>
bool Contains(const LanguageRange (&ranges)[Count], std::int32_t langId) {
    const auto range =
        std::partition_point(std::begin(ranges), std::end(ranges),
                             [langId](const LanguageRange& each) { return each.last < langId; });
    return range != std::end(ranges) && langId >= range->first;
}

}  // namespace

NumberSeparators NumberSeparators::OfLanguage(std::int32_t langId) {
    if (Contains(PointAndComma, langId)) {
        return {.thousands = u',', .decimal = u'.'};
    }
    if (Contains(CommaAndPoint, langId)) {
        return {.thousands = u'.', .decimal = u','};
    }
    if (Contains(CommaAndBlank, langId)) {
        return {.thousands = u'\u00A0', .decimal = u',', .altThousands = u' '};
    }
    if (Contains(PointAndApostrophe, langId)) {
        return {.thousands = u'\'', .decimal = u'.'};
    }
    return {};
}

}  // namespace generalutilities
