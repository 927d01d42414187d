#pragma once

#include <generalutilities/project/segment_codes.h>

#include "component_client.h"

#include <cstdint>
#include <string>
#include <vector>

/// What `genutil review` and `genutil accept` share: the rows of the latest import.
namespace generalutilities::cli {

/// The language that `--language` gives, which the project must have; without one, the language of
/// the latest import. Throws a `UsageError` when the rows do not tell it.
std::int32_t ReimportLanguage(const OpenProject& project, const std::string& language);

/// "codes lost: {1}; code doubled: {2}"; empty for no differences.
std::string DescribeCodes(const std::vector<CodeDifference>& codes);

/// "lost", "added", "doubled".
const char* CodeKindName(CodeDifference::Kind kind);

}  // namespace generalutilities::cli
