#pragma once

namespace generalutilities::cli {

/// How genutil ends. Scripts rely on these: no other value leaves the program, whatever happens.
enum class ExitCode : int {
    Done = 0,
    NegativeAnswer = 1,  ///< the work was done, and the answer is no: nothing found, rows left out
    WrongUse = 2,        ///< the command line cannot be understood or asks for the impossible
    Failed = 3,          ///< the work failed; standard error holds the description and its source
};

}  // namespace generalutilities::cli
