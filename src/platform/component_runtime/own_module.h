#pragma once

#include <generalutilities/automation/type_information.h>

#include <string>

/// What the component runtime needs to know of the module it is built into.
///
/// The runtime lies below the module, so it does not call it: the module leaves these functions
/// here when it is loaded. Without a module (a test of the runtime alone) the library has no
/// classes of its own.
namespace generalutilities {

struct OwnModule {
    /// The class factory of one of the module's classes, built-in services included.
    HRESULT (*getClassObject)(REFCLSID clsid, REFIID iid, void** object) = nullptr;
    /// The versioned ProgID of one of the module's classes or built-in services, or null.
    const char16_t* (*progIdOf)(REFCLSID clsid) = nullptr;
    /// The built-in service with this ProgID, or null: services are never registered.
    const CLSID* (*serviceOf)(const char16_t* progId) = nullptr;
    /// A reference to the module's type library.
    HRESULT (*typeLibrary)(ITypeLib** library) = nullptr;
};

void SetOwnModule(const OwnModule& functions);
const OwnModule& GetOwnModule();

/// The file that this code was loaded from, symbolic links resolved (UTF-8).
std::string OwnModulePath();

}  // namespace generalutilities
