#pragma once

#include "frame/interface_description.h"

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

/// The type library: what it holds, and the published interfaces through which it is read.
namespace generalutilities {

struct EnumerationDescription {
    struct Constant {
        const char16_t* name;
        std::int32_t value;
    };
    const char16_t* name;
    std::vector<Constant> constants;
};

/// Another name for an enumeration of the library.
struct AliasDescription {
    const char16_t* name;
    const char16_t* target;
};

/// A structure whose fields are all `long`.
struct RecordDescription {
    const char16_t* name;
    std::vector<const char16_t*> fields;
};

struct ClassDescription {
    const char16_t* name;
    const char16_t* help;
    const CLSID& clsid;
    std::uint16_t typeFlags;
    const char16_t* defaultInterface;
    const char16_t* sourceInterface = nullptr;  ///< of the events, if there are any
};

using TypeDescription = std::variant<ClassDescription, const InterfaceDescription*,
                                     RecordDescription, EnumerationDescription, AliasDescription>;

/// A library lives as long as the process; its type information points into it.
struct TypeLibraryDescription {
    const char16_t* name;
    const char16_t* help;
    const GUID& id;
    std::uint16_t majorVersion;
    std::uint16_t minorVersion;
    std::vector<TypeDescription> types;

    std::optional<std::uint32_t> IndexOf(std::u16string_view typeName) const;
};

/// A new reference to an object that reads the library.
HRESULT OpenTypeLibrary(const TypeLibraryDescription& library, ITypeLib** opened) noexcept;

/// A new reference to the information of one type; TYPE_E_ELEMENTNOTFOUND behind the last.
HRESULT OpenTypeInformation(const TypeLibraryDescription& library, std::uint32_t index,
                            ITypeInfo** opened) noexcept;

const char16_t* NameOf(const TypeDescription& type);
TYPEKIND KindOf(const TypeDescription& type);
/// The identifier of a class or interface; all zero for other types.
GUID GuidOf(const TypeDescription& type);
/// "IThing Interface", "Thing Class"; empty for other types.
std::u16string HelpOf(const TypeDescription& type);

}  // namespace generalutilities
