#pragma once

#include <generalutilities/automation/type_information.h>

#include "frame/class_factory.h"
#include "frame/type_library.h"

#include <atomic>
#include <span>
#include <string_view>

/// The ten creatable classes, and the type library that describes them.
namespace generalutilities {

/// One creatable class.
struct ClassRow {
    const char16_t* name;
    const CLSID& clsid;
    const char16_t* defaultInterface;
    const char16_t* sourceInterface;  ///< of its events, or null
    const char16_t* help;             ///< in the type library
    std::uint16_t typeFlags;
    Creator create;
};

/// The rows, in the order in which they are searched and registered.
std::span<const ClassRow> ClassTable();

/// "GeneralUtilities.X.1" for the class X of a row.
std::u16string VersionedProgId(const ClassRow& row);

/// The class factory of a class or of a built-in service, as `iid`; made on first use and kept.
HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** object);
/// The same for the ten classes alone, as callers from outside ask for them.
HRESULT GetPublicClassFactory(REFCLSID clsid, REFIID iid, void** object);
/// The ProgID of a built-in service that has one, or null; and the way back.
const char16_t* ServiceProgId(REFCLSID clsid);
const CLSID* FindService(std::u16string_view progId);
/// Releases the factories that are kept, when the module goes.
void ReleaseClassFactories();

/// The library's 28 types: classes, interfaces, a record, enumerations, aliases.
const TypeLibraryDescription& OwnTypeLibrary();

}  // namespace generalutilities
