#pragma once

namespace generalutilities {

/// The module's lock count: objects alive, server locks, and class factories that callers hold.
/// Atomic; zero means that the module may be unloaded.
void LockModule();
void UnlockModule();
bool IsModuleLocked();

}  // namespace generalutilities
