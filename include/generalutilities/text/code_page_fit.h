#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// Which code pages can carry a text, character by character and without any approximation: a base
/// letter with a combining mark is two characters, also where the page has the two as one.
namespace generalutilities {

/// Whether the code page carries every code unit of the text. 0 stands for the system's ANSI code
/// page. True for a page that is not served, since nothing is known to be missing there, and for
/// 1200, which carries any text as it is. Throws `std::bad_alloc`.
bool FitsCodePage(std::u16string_view text, std::uint32_t codePage);

/// The code pages of one script or language that can carry the whole text, in the order of their
/// published bits: 1252 first, the double-byte pages last. None for an empty text. Throws
/// `std::bad_alloc`.
std::vector<std::uint32_t> CodePagesOfText(std::u16string_view text);

}  // namespace generalutilities
