#pragma once

#include "command.h"

namespace generalutilities::cli {

/// Adds `find` to `genutil text`.
void AddTextFindCommand(CLI::App& text, CommandContext& context);

}  // namespace generalutilities::cli
