#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The two reduced forms of a text by which an export finds pairs that are equal.
namespace generalutilities {

/// The index key of a source segment: its words and what stands between them, without numbers and
/// codes, at most 50 code units. A host fills the column `Source2Index` with it; where the two
/// disagree, `UniquePairsOnly` finds fewer duplicates. It is not the key of `ToIndex`.
std::u16string MakeSourceKey(std::u16string_view text, std::int32_t langId);

/// A text without its numbers and without spaces at its ends. Two texts are equal for an export
/// when these forms are, unit by unit.
std::u16string CompareForm(std::u16string_view text, std::int32_t langId);

}  // namespace generalutilities
