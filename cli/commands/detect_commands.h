#pragma once

#include "command.h"

namespace generalutilities::cli {

void AddCodePageDetectCommand(CLI::App& codePage, CommandContext& context);
void AddLanguageDetectCommand(CLI::App& language, CommandContext& context);

}  // namespace generalutilities::cli
