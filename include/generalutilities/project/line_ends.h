#pragma once

#include <string>
#include <string_view>

/// Line ends of texts that went through a reviewed file: there a CR, an LF and a CR LF are one and
/// the same paragraph mark, and all come back as CR LF.
namespace generalutilities {

/// Whether two texts are equal but for the form of their line ends.
bool EqualButForLineEnds(std::u16string_view a, std::u16string_view b);

/// `text` with its CR LF in the form that the line ends of `model` have, where those have one form;
/// otherwise as it is.
std::u16string WithLineEndsOf(std::u16string_view text, std::u16string_view model);

}  // namespace generalutilities
