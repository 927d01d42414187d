#include "drawing/char_format.h"

#include "platform/code_pages/code_pages.h"

#include <algorithm>

namespace generalutilities {
namespace {

/// Pixels of the screen to the inch.
constexpr int ScreenResolution = 96;

/// Everything but what a font does not tell, as the published masks have it: size, offset, colour,
/// character set, face, effects.
constexpr std::uint32_t FontMask = 0xFC08803F;
constexpr std::int32_t BoldWeight = 700;

}  // namespace

CHARFORMAT2W FontFormat(const LOGFONT& font) {
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    format.dwMask = FontMask;
    format.yHeight =
        static_cast<std::int32_t>(std::int64_t{font.lfHeight} * -TwipsPerInch / ScreenResolution);
    format.dwEffects = CFE_AUTOBACKCOLOR | (font.lfWeight < BoldWeight ? 0U : CFE_BOLD) |
                       (font.lfItalic == 0 ? 0U : CFE_ITALIC) |
                       (font.lfUnderline == 0 ? 0U : CFE_UNDERLINE) |
                       (font.lfStrikeOut == 0 ? 0U : CFE_STRIKEOUT);
    format.bCharSet = font.lfCharSet;
    format.bPitchAndFamily = font.lfPitchAndFamily;
    std::u16string face;
    code_pages::AppendDecoded(SystemAnsiCodePage, {font.lfFaceName, sizeof font.lfFaceName}, face);
    std::copy_n(face.begin(), std::min(face.size(), std::size(format.szFaceName)),
                format.szFaceName);
    return format;
}

}  // namespace generalutilities
