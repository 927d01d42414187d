#pragma once

#include <generalutilities/automation/values.h>

namespace generalutilities {

/// The bytes of one element of an array of this type; 0 for a type that no array has.
std::uint32_t ElementSize(VARTYPE type) noexcept;

}  // namespace generalutilities
