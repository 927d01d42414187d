#pragma once

#include "command.h"

namespace generalutilities::cli {

/// Adds `serialize` to `genutil tags`.
void AddTagsSerializeCommand(CLI::App& tags, CommandContext& context);

}  // namespace generalutilities::cli
