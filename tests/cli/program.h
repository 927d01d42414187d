#pragma once

#include "database/temporary_folder.h"

#include <string>
#include <vector>

/// Runs the built genutil as a user would, in a folder of its own.
namespace generalutilities::cli_test {

struct Surroundings {
    std::string input = {};                     ///< standard input
    std::vector<std::string> environment = {};  ///< "NAME=value", added to that of the test
    std::string outputTo = {};                  ///< standard output goes to this file instead
    bool brokenPipe = false;                    ///< standard output is a pipe that nobody reads
    bool terminal = false;    ///< all three streams are a terminal; it is all `output`
    long fileSizeLimit = -1;  ///< in bytes: a file cannot grow beyond it
};

struct Result {
    int exitCode = -1;  ///< 128 and the signal for a program that a signal ended
    std::string output;
    std::string error;
};

Result Run(const std::string& program, const std::vector<std::string>& arguments,
           const Surroundings& surroundings = {});

/// The words of a cell of a table of cases: ␣ stands for a blank in a word, ∅ for an empty word.
std::vector<std::string> Arguments(const std::u16string& cell);

/// Runs genutil.
Result Genutil(const std::vector<std::string>& arguments, const Surroundings& surroundings = {});

}  // namespace generalutilities::cli_test
