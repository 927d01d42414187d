#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Windows code pages by number, served by ICU's converters and, for 1361, by the C library's.
namespace generalutilities::code_pages {

/// The system's ANSI code page, a constant of this build. Code page 0 stands for it.
inline constexpr std::uint32_t SystemAnsiCodePage = 1252;

/// Decodes `bytes` and appends the result to `text`. False, with nothing appended, for a code page
/// without a converter. Bytes that the page does not define become U+FFFD; half a character at the
/// end does too, and never waits for a later call.
bool AppendDecoded(std::uint32_t codePage, std::string_view bytes, std::u16string& text);

}  // namespace generalutilities::code_pages
