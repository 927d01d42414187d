#pragma once

#include <generalutilities/code_pages.h>

#include <cstdint>
#include <memory>
#include <string>

/// Code pages as the command line takes and shows them.
namespace generalutilities::cli {

/// A converter of the code page that `option` asks for; a `UsageError` that names the option where
/// the page is not served.
std::unique_ptr<CodePageConverter> OpenNamedCodePage(const std::string& option,
                                                     std::uint32_t number);

/// The character at an index of a text, such as "U+05D0"; a whole pair of surrogates as one.
std::string CodePointAt(std::u16string_view text, std::size_t index);

}  // namespace generalutilities::cli
