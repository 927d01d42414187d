#include "module/registration.h"

#include <generalutilities/interfaces/class_ids.h>

#include "frame/object.h"
#include "module/class_table.h"
#include "platform/component_runtime/guid_text.h"
#include "platform/component_runtime/own_module.h"
#include "platform/registry/registry.h"

#include <string>
#include <string_view>

namespace generalutilities {

namespace {

constexpr std::string_view Root = "HKEY_CLASSES_ROOT\\";
constexpr std::string_view AutomationMarshaler = "{00020424-0000-0000-C000-000000000046}";
constexpr std::string_view DispatchMarshaler = "{00020420-0000-0000-C000-000000000046}";

/// Names and help strings of the library are plain ASCII.
std::string Narrow(std::u16string_view text) {
    return std::string(text.begin(), text.end());
}

struct ClassKeys {
    std::string versioned, independent, clsid;

    explicit ClassKeys(const ClassRow& row)
        : versioned("GeneralUtilities." + Narrow(row.name) + ".1"),
          independent("GeneralUtilities." + Narrow(row.name)),
          clsid(std::string(Root) + "CLSID\\" + GuidText(row.clsid)) {}
};

void RegisterClass(registry::Tree& tree, const ClassRow& row, const std::string& module) {
    const ClassKeys keys(row);
    const std::string identifier = GuidText(row.clsid);
    const std::string description = Narrow(row.name) + " Class";
    const std::string root(Root);

    tree.Set(root + keys.versioned, "", description);
    tree.Set(root + keys.versioned + "\\CLSID", "", identifier);
    tree.Set(root + keys.independent, "", description);
    tree.Set(root + keys.independent + "\\CLSID", "", identifier);
    tree.Set(root + keys.independent + "\\CurVer", "", keys.versioned);

    tree.RemoveKey(keys.clsid);
    tree.Set(keys.clsid, "", description);
    tree.Set(keys.clsid + "\\ProgID", "", keys.versioned);
    tree.Set(keys.clsid + "\\VersionIndependentProgID", "", keys.independent);
    tree.AddKey(keys.clsid + "\\Programmable");
    tree.Set(keys.clsid + "\\InprocServer32", "", module);
    tree.Set(keys.clsid + "\\InprocServer32", "ThreadingModel", "Apartment");
    tree.Set(keys.clsid + "\\TypeLib", "", GuidText(LIBID_GeneralUtilities));
}

void UnregisterClass(registry::Tree& tree, const ClassRow& row) {
    const ClassKeys keys(row);
    tree.RemoveKey(std::string(Root) + keys.versioned);
    tree.RemoveKey(std::string(Root) + keys.independent);
    tree.RemoveKey(keys.clsid);
}

std::string LibraryKey() {
    return std::string(Root) + "TypeLib\\" + GuidText(LIBID_GeneralUtilities);
}

std::string VersionKey() {
    return LibraryKey() + "\\1.0";
}

std::string InterfaceKey(const InterfaceDescription& interface) {
    return std::string(Root) + "Interface\\" + GuidText(interface.iid);
}

template <class Action>
void ForEachInterface(const TypeLibraryDescription& library, Action&& action) {
    for (const TypeDescription& type : library.types) {
        if (const auto* const interface = std::get_if<const InterfaceDescription*>(&type)) {
            action(**interface);
        }
    }
}

void RegisterTypeLibrary(registry::Tree& tree, const std::string& module) {
    const TypeLibraryDescription& library = OwnTypeLibrary();
    const std::string version = VersionKey();
    tree.Set(version, "", Narrow(library.help));
    tree.Set(version + "\\0\\linux64", "", module);
    tree.Set(version + "\\FLAGS", "", "0");
    tree.Set(version + "\\HELPDIR", "", module.substr(0, module.rfind('/')));
    ForEachInterface(library, [&](const InterfaceDescription& interface) {
        const std::string key = InterfaceKey(interface);
        tree.Set(key, "", Narrow(interface.name));
        tree.Set(key + "\\ProxyStubClsid32", "",
                 interface.IsDual() ? AutomationMarshaler : DispatchMarshaler);
        tree.Set(key + "\\TypeLib", "", GuidText(library.id));
        tree.Set(key + "\\TypeLib", "Version", "1.0");
    });
}

void UnregisterTypeLibrary(registry::Tree& tree) {
    tree.RemoveKey(VersionKey());
    if (!tree.HasKeysBelow(LibraryKey())) {  // another version stays
        tree.RemoveKey(LibraryKey());
    }
    ForEachInterface(OwnTypeLibrary(), [&](const InterfaceDescription& interface) {
        tree.RemoveKey(InterfaceKey(interface));
    });
}

}  // namespace

HRESULT RegisterModule() {
    return Guarded([] {
        const std::string module = OwnModulePath();
        if (module.empty()) {
            return E_UNEXPECTED;
        }
        return registry::Update([&](registry::Tree& tree) {
            for (const ClassRow& row : ClassTable()) {
                RegisterClass(tree, row, module);
            }
            RegisterTypeLibrary(tree, module);
        });
    });
}

HRESULT UnregisterModule() {
    return Guarded([] {
        registry::Tree registered;
        if (const HRESULT status = registry::Read(registered);
            Failed(status) || registered == registry::Tree()) {
            return status;  // nothing was ever entered: write nothing into the user's home
        }
        return registry::Update([](registry::Tree& tree) {
            for (const ClassRow& row : ClassTable()) {
                UnregisterClass(tree, row);
            }
            UnregisterTypeLibrary(tree);
        });
    });
}

}  // namespace generalutilities
