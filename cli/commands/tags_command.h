#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddTagsCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
