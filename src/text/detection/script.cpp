#include "text/detection/script.h"

#include "text/char_tables.h"

#include <algorithm>
#include <iterator>

namespace generalutilities::detection {

namespace {

struct ScriptRange {
    char16_t first;
    char16_t last;
    Script script;
};
constexpr ScriptRange ScriptRanges[] = {
    {0x0041, 0x024F, Script::Latin},      {0x0300, 0x036F, Script::Latin},
    {0x0370, 0x03FF, Script::Greek},      {0x0400, 0x052F, Script::Cyrillic},
    {0x0530, 0x058F, Script::Armenian},   {0x0590, 0x05FF, Script::Hebrew},
    {0x0600, 0x06FF, Script::Arabic},     {0x0750, 0x077F, Script::Arabic},
    {0x0900, 0x097F, Script::Devanagari}, {0x0980, 0x09FF, Script::Bengali},
    {0x0A00, 0x0A7F, Script::Gurmukhi},   {0x0A80, 0x0AFF, Script::Gujarati},
    {0x0B00, 0x0B7F, Script::Oriya},      {0x0B80, 0x0BFF, Script::Tamil},
    {0x0C00, 0x0C7F, Script::Telugu},     {0x0C80, 0x0CFF, Script::Kannada},
    {0x0D00, 0x0D7F, Script::Malayalam},  {0x0D80, 0x0DFF, Script::Sinhala},
    {0x0E00, 0x0E7F, Script::Thai},       {0x0E80, 0x0EFF, Script::Lao},
    {0x0F00, 0x0FFF, Script::Tibetan},    {0x1000, 0x109F, Script::Burmese},
    {0x10A0, 0x10FF, Script::Georgian},   {0x1100, 0x11FF, Script::Hangul},
    {0x1200, 0x137F, Script::Ethiopic},   {0x1780, 0x17FF, Script::Khmer},
    {0x1E00, 0x1EFF, Script::Latin},      {0x1F00, 0x1FFF, Script::Greek},
    {0x3005, 0x3007, Script::Han},        {0x3040, 0x312F, Script::Han},
    {0x3130, 0x318F, Script::Hangul},     {0x3400, 0x9FFF, Script::Han},
    {0xAC00, 0xD7A3, Script::Hangul},     {0xF900, 0xFAFF, Script::Han},
};

bool IsLetterOrMark(char16_t unit) {
    return (CharCategory(unit) & 0x70) == 0x10;
}

}  // namespace

Script ScriptOf(char16_t unit) {
    if (!IsLetterOrMark(unit)) {
        return Script::None;
    }
    const auto* const range = std::ranges::lower_bound(ScriptRanges, unit, {}, &ScriptRange::last);
    return range != std::end(ScriptRanges) && unit >= range->first ? range->script : Script::Other;
}

}  // namespace generalutilities::detection
