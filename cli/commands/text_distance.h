#pragma once

#include "command.h"

namespace generalutilities::cli {

/// Adds `distance` to `genutil text`.
void AddTextDistanceCommand(CLI::App& text, CommandContext& context);

}  // namespace generalutilities::cli
