#pragma once

#include <string>
#include <string_view>

/// Line ends of texts that went through a reviewed file: there a CR, an LF and a CR LF are one and
/// the same paragraph mark, and all come back as CR LF.
namespace generalutilities {

/// Whether two texts are equal but for the form of their line ends.
bool EqualButForLineEnds(std::u16string_view a, std::u16string_view b);

/// `text` with its line ends in the form that those of `model` have, where they have one form;
/// otherwise as it is. All are changed, as one that stayed could join its neighbour.
std::u16string WithLineEndsOf(std::u16string_view text, std::u16string_view model);

}  // namespace generalutilities
