// The exported functions that stand on the whole library, and what happens when it is loaded and
// unloaded. The exports of the automation and component runtimes stand in their rooms; the complete
// list is module/exports.map.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>

#include "extview/project_database_component.h"
#include "frame/error_reporting.h"
#include "frame/module_lock.h"
#include "module/class_table.h"
#include "module/registration.h"
#include "platform/component_runtime/guid_text.h"
#include "platform/component_runtime/own_module.h"
#include "platform/files/files.h"
#include "platform/registry/registry.h"

#include <memory>
#include <stdlib.h>
#include <string>

namespace generalutilities {

namespace {

HRESULT OpenOwnTypeLibrary(ITypeLib** library) {
    return OpenTypeLibrary(OwnTypeLibrary(), library);
}

const char16_t* ProgIdOf(REFCLSID clsid) {
    static const std::vector<std::u16string> progIds = [] {
        std::vector<std::u16string> made;
        for (const ClassRow& row : ClassTable()) {
            made.push_back(VersionedProgId(row));
        }
        return made;
    }();
    const auto rows = ClassTable();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].clsid == clsid) {
            return progIds[i].c_str();
        }
    }
    return ServiceProgId(clsid);
}

const CLSID* ServiceOf(const char16_t* progId) {
    return FindService(progId);
}

[[gnu::constructor]] void Load() {
    SetOwnModule({&GetClassFactory, &ProgIdOf, &ServiceOf, &OpenOwnTypeLibrary});
}

[[gnu::destructor]] void Unload() {
    ReleaseClassFactories();
}

bool IsOwnModule(const std::string& path) {
    const std::unique_ptr<char, decltype(&free)> resolved(realpath(path.c_str(), nullptr), &free);
    return resolved != nullptr && resolved.get() == OwnModulePath();
}

/// Leaves the reason why a project could not be opened for the caller.
HRESULT ReportDatabaseFailure(const DatabaseFailure& failure) {
    return ReportFailure(
        failure.source.c_str(), failure.description.c_str(), IID_IProjectDatabase,
        failure.kind == DatabaseFailure::Kind::OutOfMemory ? E_OUTOFMEMORY : E_FAIL);
}

}  // namespace

extern "C" {

HRESULT DllCanUnloadNow() noexcept {
    return IsModuleLocked() ? S_FALSE : S_OK;
}

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept {
    return object == nullptr ? E_POINTER : GetPublicClassFactory(clsid, iid, object);
}

HRESULT DllRegisterServer() noexcept {
    return RegisterModule();
}

HRESULT DllUnregisterServer() noexcept {
    return UnregisterModule();
}

HRESULT LoadTypeLib(const char16_t* path, ITypeLib** library) noexcept {
    if (path == nullptr || library == nullptr) {
        return E_INVALIDARG;
    }
    *library = nullptr;
    return Guarded([&] {
        return IsOwnModule(files::ToNativePath(path)) ? OpenOwnTypeLibrary(library)
                                                      : TYPE_E_CANTLOADLIBRARY;
    });
}

HRESULT LoadRegTypeLib(REFGUID libraryId, std::uint16_t major, std::uint16_t minor, LCID,
                       ITypeLib** library) noexcept {
    if (library == nullptr) {
        return E_INVALIDARG;
    }
    *library = nullptr;
    return Guarded([&] {
        registry::Tree tree;
        const std::string key = "HKEY_CLASSES_ROOT\\TypeLib\\" + GuidText(libraryId) + "\\" +
                                std::to_string(major) + "." + std::to_string(minor) +
                                "\\0\\linux64";
        const std::string* const path =
            Succeeded(registry::Read(tree)) ? tree.Find(key, "") : nullptr;
        if (path == nullptr) {
            return TYPE_E_LIBNOTREGISTERED;
        }
        // The same library registered from another place describes the same types.
        return IsOwnModule(*path) || libraryId == LIBID_GeneralUtilities
                   ? OpenOwnTypeLibrary(library)
                   : TYPE_E_CANTLOADLIBRARY;
    });
}

HRESULT OpenProjectDatabase(const char16_t* location, IUnknown** project) noexcept {
    if (location == nullptr || project == nullptr) {
        return E_INVALIDARG;
    }
    *project = nullptr;
    return Guarded([&] {
        DatabaseFailure failure;
        std::unique_ptr<Database> database = OpenDatabase(location, OpenMode::ReadWrite, failure);
        if (database == nullptr) {
            return ReportDatabaseFailure(failure);
        }
        *project = new StandaloneObject<CProjectDatabase>(std::move(database));
        (*project)->AddRef();
        return S_OK;
    });
}

}  // extern "C"
}  // namespace generalutilities
