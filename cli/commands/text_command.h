#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddTextCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
