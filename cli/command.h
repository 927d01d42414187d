#pragma once

#include "console.h"
#include "exit_codes.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <utility>

namespace generalutilities::cli {

/// What the commands share. A command file offers one function `void Add<Name>Command(CLI::App&
/// parent, CommandContext& context)`, which adds its subcommand with its options and says by `Runs`
/// what happens. Nothing runs before the whole command line has been understood.
///
/// A command gives its exit code; it throws `UsageError` or `Failure` when it cannot go on.
struct CommandContext {
    Console& console;
    std::function<ExitCode()> action;  ///< set by the command that was called

    void Runs(CLI::App* command, std::function<ExitCode()> run) {
        command->callback([this, run = std::move(run)] { action = run; });
    }
};

}  // namespace generalutilities::cli
