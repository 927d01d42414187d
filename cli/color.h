#pragma once

#include <cstdint>
#include <string>

/// Colours of the command line, "#RRGGBB".
namespace generalutilities::cli {

/// Empty for a colour, else what is wrong with it.
std::string CheckColor(const std::string& text);

/// A colour that has been checked, as the library takes it: 0x00BBGGRR.
std::int32_t ParseColor(const std::string& text);

}  // namespace generalutilities::cli
