#pragma once

#include "console.h"
#include "exit_codes.h"

namespace CLI {
class App;
}

namespace generalutilities::cli {

struct CommandContext;

/// Makes `app` all of genutil: its name, its commands with their options, its words.
void AddEverything(CLI::App& app, CommandContext& context);

/// Reads the command line, runs the command it names, and turns whatever comes back, exceptions
/// too, into an exit code and words on standard error.
ExitCode RunApplication(int argc, const char* const* argv, Console& console);

}  // namespace generalutilities::cli
