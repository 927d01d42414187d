#pragma once

#include "command.h"

namespace generalutilities::cli {

/// `genutil itd info`, `languages`, `segments`, `extract` and `apply`.
void AddItdDocumentCommands(CLI::App& itd, CommandContext& context);

}  // namespace generalutilities::cli
