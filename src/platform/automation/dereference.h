#pragma once

#include <generalutilities/automation/values.h>

namespace generalutilities {

/// The value itself behind a by-reference value, or a value as it stands. `direct` owns nothing:
/// strings, arrays and objects still belong to where they came from. Fails for null references and
/// for types that no reference has.
HRESULT Dereference(const VARIANT& source, VARIANT& direct) noexcept;

}  // namespace generalutilities
