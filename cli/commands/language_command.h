#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddLanguageCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
