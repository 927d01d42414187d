#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddExportCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
