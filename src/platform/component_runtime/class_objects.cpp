// From a class identifier to an object: factories that the host put in place, the module's own
// classes, and modules that the registry names.

#include <generalutilities/automation/pointers.h>

#include "platform/component_runtime/guid_text.h"
#include "platform/component_runtime/own_module.h"
#include "platform/registry/registry.h"

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <string>
#include <vector>

namespace generalutilities {

namespace {

struct RegisteredClass {
    CLSID clsid;
    ComPtr<IUnknown> factory;
    std::uint32_t cookie;
};

struct RegisteredClasses {
    std::mutex mutex;
    std::vector<RegisteredClass> classes;
    std::uint32_t lastCookie = 0;
};

RegisteredClasses& Registered() {
    static RegisteredClasses registered;
    return registered;
}

ComPtr<IUnknown> FindRegistered(REFCLSID clsid) {
    RegisteredClasses& registered = Registered();
    const std::lock_guard lock(registered.mutex);
    for (auto entry = registered.classes.rbegin(); entry != registered.classes.rend(); ++entry) {
        if (entry->clsid == clsid) {
            return entry->factory;
        }
    }
    return {};
}

std::string ClassKey(REFCLSID clsid) {
    return "HKEY_CLASSES_ROOT\\CLSID\\" + GuidText(clsid);
}

/// Asks the module that the registry names; it stays loaded, as objects of it may live on.
HRESULT GetForeignClassObject(REFCLSID clsid, REFIID iid, void** object) {
    registry::Tree tree;
    if (const HRESULT status = registry::Read(tree); Failed(status)) {
        return status;
    }
    const std::string* const path = tree.Find(ClassKey(clsid) + "\\InprocServer32", "");
    if (path == nullptr || *path == OwnModulePath()) {
        return REGDB_E_CLASSNOTREG;
    }
    void* const module = dlopen(path->c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        return REGDB_E_CLASSNOTREG;
    }
    void* const symbol = dlsym(module, "DllGetClassObject");
    if (symbol == nullptr) {
        dlclose(module);
        return REGDB_E_CLASSNOTREG;
    }
    HRESULT (*getClassObject)(REFCLSID, REFIID, void**);
    static_assert(sizeof getClassObject == sizeof symbol);
    std::memcpy(&getClassObject, &symbol, sizeof symbol);
    return getClassObject(clsid, iid, object);
}

}  // namespace

extern "C" {

HRESULT CoGetClassObject(REFCLSID clsid, std::uint32_t /*context*/, void* /*reserved*/, REFIID iid,
                         void** object) noexcept {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    try {
        if (const ComPtr<IUnknown> registered = FindRegistered(clsid)) {
            return registered->QueryInterface(iid, object);
        }
        if (const OwnModule& own = GetOwnModule(); own.getClassObject != nullptr) {
            const HRESULT status = own.getClassObject(clsid, iid, object);
            if (status != CLASS_E_CLASSNOTAVAILABLE || own.progIdOf(clsid) != nullptr) {
                return status;
            }
        }
        return GetForeignClassObject(clsid, iid, object);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, std::uint32_t context, REFIID iid,
                         void** object) noexcept {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    ComPtr<IClassFactory> factory;
    if (const HRESULT status =
            CoGetClassObject(clsid, context, nullptr, IID_IClassFactory, factory.OutVoid());
        Failed(status)) {
        return status;
    }
    return factory->CreateInstance(outer, iid, object);
}

HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* factory, std::uint32_t /*context*/,
                              std::uint32_t /*flags*/, std::uint32_t* cookie) noexcept {
    if (factory == nullptr || cookie == nullptr) {
        return E_INVALIDARG;
    }
    try {
        RegisteredClasses& registered = Registered();
        const std::lock_guard lock(registered.mutex);
        registered.classes.push_back(
            {clsid, ComPtr<IUnknown>::Share(factory), registered.lastCookie + 1});
        *cookie = ++registered.lastCookie;
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

HRESULT CoRevokeClassObject(std::uint32_t cookie) noexcept {
    ComPtr<IUnknown> revoked;  // released outside the lock: its end may call back
    RegisteredClasses& registered = Registered();
    const std::lock_guard lock(registered.mutex);
    const auto entry = std::find_if(registered.classes.begin(), registered.classes.end(),
                                    [&](const RegisteredClass& c) { return c.cookie == cookie; });
    if (entry == registered.classes.end()) {
        return CO_E_OBJNOTREG;
    }
    revoked = std::move(entry->factory);
    registered.classes.erase(entry);
    return S_OK;
}

HRESULT CLSIDFromProgID(const char16_t* progId, CLSID* clsid) noexcept {
    if (progId == nullptr || clsid == nullptr) {
        return E_INVALIDARG;
    }
    *clsid = GUID_NULL;
    try {
        registry::Tree tree;
        if (const HRESULT status = registry::Read(tree); Failed(status)) {
            return status;
        }
        std::string key = "HKEY_CLASSES_ROOT\\";
        for (const char16_t* unit = progId; *unit != 0; ++unit) {
            if (*unit > 0x7E || *unit == u'\\') {
                return CO_E_CLASSSTRING;
            }
            key.push_back(static_cast<char>(*unit));
        }
        const std::string* const text = tree.Find(key + "\\CLSID", "");
        const auto parsed = text == nullptr ? std::nullopt : ParseGuid(*text);
        if (parsed) {
            *clsid = *parsed;
            return S_OK;
        }
        const OwnModule& own = GetOwnModule();
        const CLSID* const service = own.serviceOf == nullptr ? nullptr : own.serviceOf(progId);
        if (service == nullptr) {
            return CO_E_CLASSSTRING;
        }
        *clsid = *service;
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

HRESULT ProgIDFromCLSID(REFCLSID clsid, char16_t** progId) noexcept {
    if (progId == nullptr) {
        return E_INVALIDARG;
    }
    *progId = nullptr;
    try {
        std::u16string text;
        registry::Tree tree;
        const std::string* const stored =
            Succeeded(registry::Read(tree)) ? tree.Find(ClassKey(clsid) + "\\ProgID", "") : nullptr;
        if (stored != nullptr) {
            text.assign(stored->begin(), stored->end());
        } else if (const OwnModule& own = GetOwnModule(); own.progIdOf != nullptr) {
            if (const char16_t* const known = own.progIdOf(clsid); known != nullptr) {
                text = known;
            }
        }
        if (text.empty()) {
            return REGDB_E_CLASSNOTREG;
        }
        const std::size_t bytes = (text.size() + 1) * sizeof(char16_t);
        *progId = static_cast<char16_t*>(CoTaskMemAlloc(bytes));
        if (*progId == nullptr) {
            return E_OUTOFMEMORY;
        }
        std::memcpy(*progId, text.c_str(), bytes);
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

}  // extern "C"
}  // namespace generalutilities
