#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddCodePageConvertCommand(CLI::App& codePage, CommandContext& context);

}  // namespace generalutilities::cli
