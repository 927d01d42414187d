#pragma once

#include "command.h"

namespace generalutilities::cli {

/// `genutil project create`, `info` and `rows`.
void AddProjectCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
