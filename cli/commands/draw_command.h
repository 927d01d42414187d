#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddDrawCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
