#pragma once

#include <cstddef>
#include <string_view>

namespace generalutilities {

/// The length of the placeholder of a program text that starts at `position`; 0 for none there.
///
/// Known are: printf's conversions ("%s", "%-5.2f", "%1$d", "%(name)s"; a blank is no flag, since
/// "100 % der" is none, and "%%" is text), names and numbers in braces ("{0}", "{name!r:>8}",
/// "{{name}}"), and tags ("<b>", "</b>", "<a href='x'>", "<br/>"). Each test looks at a stretch
/// that no other placeholder can start in, so that walking a text is linear.
std::size_t ProgramPlaceholderLength(std::u16string_view text, std::size_t position);

}  // namespace generalutilities
