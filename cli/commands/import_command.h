#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddImportCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
