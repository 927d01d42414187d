#pragma once

#include <generalutilities/interfaces/ext_view_helper.h>

#include "component_client.h"

#include <string>

namespace generalutilities::cli {

/// Throws a `Failure` when the file cannot be read or is no RTF; it says what the file seems to be
/// instead, and what to do with it.
void RequireRtf(const ComPtr<IExtViewHelper>& helper, const std::string& path);

}  // namespace generalutilities::cli
