#pragma once

#include "command.h"

namespace generalutilities::cli {

/// Adds `create` to `genutil project`.
void AddProjectCreateCommand(CLI::App& project, CommandContext& context);

}  // namespace generalutilities::cli
