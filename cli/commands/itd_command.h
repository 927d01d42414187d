#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddItdCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
