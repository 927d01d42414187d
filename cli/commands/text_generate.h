#pragma once

#include "command.h"

namespace generalutilities::cli {

/// Adds `generate` to `genutil text`.
void AddTextGenerateCommand(CLI::App& text, CommandContext& context);

}  // namespace generalutilities::cli
