#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddCodePageCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
