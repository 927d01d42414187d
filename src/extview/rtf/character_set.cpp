#include "extview/rtf/character_set.h"

namespace generalutilities::rtf {

namespace {

struct Row {
    std::int32_t characterSet;
    std::int32_t codePage;
};

constexpr Row Rows[] = {
    {0, 1252},   {1, 0},      {2, 42},     {77, 10000}, {78, 10001}, {79, 10003}, {80, 10008},
    {81, 10002}, {83, 10005}, {84, 10004}, {85, 10006}, {86, 10081}, {87, 10021}, {88, 10029},
    {89, 10007}, {128, 932},  {129, 949},  {130, 1361}, {134, 936},  {136, 950},  {161, 1253},
    {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257}, {204, 1251}, {222, 874},
    {238, 1250}, {254, 437},  {255, 850},
};

}  // namespace

std::int32_t CodePageOfCharacterSet(std::int32_t characterSet) {
    for (const Row& row : Rows) {
        if (row.characterSet == characterSet) {
            return row.codePage;
        }
    }
    return -1;
}

}  // namespace generalutilities::rtf
