#pragma once

#include <cstddef>
#include <string_view>

/// The folds of <generalutilities/text/folding.h> for callers who have a place of their own for the
/// result. Nearly every text keeps its length; so fold what does into room for as many units, and
/// take more only if something is left:
///
///     char16_t* out = Room(text.size());
///     const std::size_t done = FoldPrefix(fold, text, out);
///     if (done < text.size()) {
///         const std::u16string_view rest = text.substr(done);
///         out = MoreRoom(out, done + FoldedLength(fold, rest));
///         FoldTo(fold, rest, out + done);
///     }
namespace generalutilities {

enum class Fold { Upper, Lower, DeAccent, DeAccentUpper };

/// The most units that a fold makes of one.
inline constexpr std::size_t LongestFold = 18;

/// Folds up to the first code unit that becomes several; the number of units read and written.
/// `out` has room for the whole text and does not overlap it; behind the prefix its content is
/// undefined.
std::size_t FoldPrefix(Fold fold, std::u16string_view text, char16_t* out) noexcept;

/// The number of code units that a text becomes.
std::size_t FoldedLength(Fold fold, std::u16string_view text) noexcept;

/// Folds a whole text; gives the end of what was written. `out` has room for
/// FoldedLength(fold, text) units and does not overlap the text. No zero is added.
char16_t* FoldTo(Fold fold, std::u16string_view text, char16_t* out) noexcept;

/// The two forms of FoldPrefix, which give the same answers. The second one needs HasAvx2()
/// (cpu.h).
std::size_t FoldPrefixPlainly(Fold fold, std::u16string_view text, char16_t* out) noexcept;
std::size_t FoldPrefixByBlocks(Fold fold, std::u16string_view text, char16_t* out) noexcept;

}  // namespace generalutilities
