#pragma once

#include <generalutilities/status.h>

namespace generalutilities {

/// Enters the ten classes and the type library in the registry (docs/registry.md lists the keys).
HRESULT RegisterModule();
/// Removes what `RegisterModule` entered; what other modules share, such as the key `CLSID`, stays.
HRESULT UnregisterModule();

}  // namespace generalutilities
