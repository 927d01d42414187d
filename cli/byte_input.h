#pragma once

#include <string>

/// Whole files and standard input as bytes.
namespace generalutilities::cli {

/// How messages call an input: "-" is standard input, all else a file.
std::string InputName(const std::string& input);

/// All bytes of an input. A `Failure` names it and says why it cannot be read.
std::string ReadInput(const std::string& input);

}  // namespace generalutilities::cli
