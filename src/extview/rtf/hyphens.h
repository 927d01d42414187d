#pragma once

#include <generalutilities/extview/prepare_review.h>

#include <string_view>

/// The two hyphens that RTF has escapes for, and the reader does not give back.
namespace generalutilities::rtf {

struct Hyphen {
    char16_t character;
    ReviewFinding finding;
    std::string_view asRead;  ///< the form that is read
};
inline constexpr Hyphen SoftHyphen{u'\u00AD', ReviewFinding::SoftHyphen, "{\\uc0\\u173 }"};
inline constexpr Hyphen NonBreakingHyphen{u'\u2011', ReviewFinding::NonBreakingHyphen,
                                          "{\\uc0\\u8209 }"};
inline constexpr std::uint32_t HyphenEscapeLength = 2;

}  // namespace generalutilities::rtf
