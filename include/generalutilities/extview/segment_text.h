#pragma once

#include <string>
#include <string_view>

/// Clean-ups of segment text that the way out to the reviewer and the way back share.
///
/// Segment text holds a code either as "{...}", where a backslash escapes "\", "{" and "}", or as
/// U+0006 shown text U+0007 hidden text U+0008.
namespace generalutilities {

/// Leaves only the shown text of each U+0006...U+0007...U+0008 code, and none of the three marks.
std::u16string StripCodeMarkers(std::u16string_view text);

/// Removes the groups in braces. Groups do not nest; one without a closing brace drops the rest.
std::u16string StripBraces(std::u16string_view text);

}  // namespace generalutilities
