#pragma once

#include <generalutilities/tagged/tag_scan.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Moving the codes of a segment out into numbered markers.
namespace generalutilities {

inline constexpr char16_t CodeMarkerStart = 0x0011;
inline constexpr char16_t CodeMarkerEnd = 0x0012;

/// The texts of a segment without their tags, and what the markers stand for.
struct SerializedCodes {
    /// Each tag is a marker: U+0011, its number in decimal digits, U+0012.
    std::vector<std::u16string> texts;
    /// The tags that the numbers stand for; the first one's number is one more than `lastNumber`
    /// was. The views point into the texts that were scanned.
    std::vector<std::u16string_view> codes;
    std::int32_t lastNumber;  ///< the last number given out
};

/// Serializes the source (the first text) and its targets, each a whole scan.
///
/// Within one text every tag has a number of its own. The n-th occurrence of a tag has the same
/// number in all texts; a tag that only targets have gets one behind those of the texts before.
/// Tags that stand side by side become one code where no text speaks against it
/// (docs/inline-codes.md has the rules). Throws `std::bad_alloc`, and `Error` with E_FAIL where
/// numbers would go beyond 2^31 - 1.
SerializedCodes SerializeCodes(std::span<const TagScan> texts, std::int32_t lastNumber);

}  // namespace generalutilities
