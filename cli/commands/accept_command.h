#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddAcceptCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
