#pragma once

#include <cstdint>
#include <fstream>
#include <string>

/// Whole files and standard input as bytes.
namespace generalutilities::cli {

/// How messages call an input: "-" is standard input, all else a file.
std::string InputName(const std::string& input);

/// All bytes of an input. A `Failure` names it and says why it cannot be read.
std::string ReadInput(const std::string& input);

/// A file opened for reading. `Failure` where it cannot be read: a folder, for example.
std::ifstream OpenInput(const std::string& path);

/// Throws `Failure` where the reading of an input, up to `offset`, ended for anything but its end.
void CheckEnd(const std::istream& stream, const std::string& name, std::uint64_t offset);

}  // namespace generalutilities::cli
