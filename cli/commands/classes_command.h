#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddClassesCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
