#pragma once

#include <string>
#include <string_view>

namespace generalutilities::detection {

/// The part of the input that is rated: up to 8 KiB from the first characters beyond ASCII on, or
/// from the start when there are none. Nothing is gained by more, and time stays bounded.
std::string_view PlainExcerpt(std::string_view bytes);

/// The same of the text between the tags, taken from the first 64 KiB from there on. Character
/// references are left out, and so are scripts and style sheets.
std::string MarkupExcerpt(std::string_view bytes);

}  // namespace generalutilities::detection
