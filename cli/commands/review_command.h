#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddReviewCommand(CLI::App& parent, CommandContext& context);

}  // namespace generalutilities::cli
