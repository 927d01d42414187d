#pragma once

#include <generalutilities/code_pages.h>

#include <string>

/// What the library itself asks of code pages beside the public converters.
namespace generalutilities::code_pages {

/// Decodes `bytes` and appends the result to `text`. Code page 0 stands for the system's ANSI code
/// page. False, with nothing appended, for a code page that is not served.
bool AppendDecoded(std::uint32_t codePage, std::string_view bytes, std::u16string& text);

}  // namespace generalutilities::code_pages
