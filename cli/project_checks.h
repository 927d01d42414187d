#pragma once

#include "component_client.h"

#include <cstdint>
#include <string>

/// What the tool asks of a project before a component works on it, so that a missing column or a
/// project that cannot be written ends in words instead of a silence.
namespace generalutilities::cli {

/// Throws a `Failure` when the project lacks a column that an export or import of this language
/// uses; it names what is missing and the languages that the project has.
void RequireLanguage(const OpenProject& project, std::int32_t langId);

/// Throws a `Failure` with the engine's words when the project cannot be changed.
void RequireWritable(const OpenProject& project);

/// Whether the project can be changed. Throws a `Failure` when that cannot be told, as with a file
/// that another program holds.
bool IsWritable(const OpenProject& project);

}  // namespace generalutilities::cli
