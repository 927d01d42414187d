#pragma once

#include "command.h"

namespace generalutilities::cli {

/// `genutil register` and `genutil unregister`.
void AddRegisterCommands(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
