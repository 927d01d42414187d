#include "type_library.h"

#include <generalutilities/automation/functions.h>
#include <generalutilities/automation/pointers.h>

#include "component_client.h"
#include "failure.h"
#include "unicode.h"

#include <cstdio>
#include <dlfcn.h>
#include <functional>
#include <memory>

namespace generalutilities::cli {
namespace {

/// A structure that a type information handed out, given back at the end.
template <class Structure>
using Lent = std::unique_ptr<Structure, std::function<void(Structure*)>>;

Lent<TYPEATTR> AttributesOf(ITypeInfo& info) {
    TYPEATTR* attributes = nullptr;
    Check(info.GetTypeAttr(&attributes), "reading a type's attributes");
    return {attributes, [&info](TYPEATTR* lent) { info.ReleaseTypeAttr(lent); }};
}

Lent<FUNCDESC> FunctionOf(ITypeInfo& info, std::uint32_t index) {
    FUNCDESC* function = nullptr;
    Check(info.GetFuncDesc(index, &function), "reading a method's description");
    return {function, [&info](FUNCDESC* lent) { info.ReleaseFuncDesc(lent); }};
}

Lent<VARDESC> VariableOf(ITypeInfo& info, std::uint32_t index) {
    VARDESC* variable = nullptr;
    Check(info.GetVarDesc(index, &variable), "reading a constant's description");
    return {variable, [&info](VARDESC* lent) { info.ReleaseVarDesc(lent); }};
}

std::string GuidText(const GUID& guid) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  guid.Data1, guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2],
                  guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

struct Documentation {
    std::string name;
    std::string help;
};

Documentation DocumentationOf(ITypeInfo& info, MEMBERID member) {
    Bstr name;
    Bstr help;
    Check(info.GetDocumentation(member, name.Out(), help.Out(), nullptr, nullptr),
          "reading a name from the type information");
    return {ToUtf8(name.View()), ToUtf8(help.View())};
}

const char* PlainTypeName(VARTYPE type) {
    switch (type) {
        case VT_I1:
            return "char";
        case VT_UI1:
            return "unsigned char";
        case VT_I2:
            return "short";
        case VT_UI2:
            return "unsigned short";
        case VT_I4:
            return "long";
        case VT_UI4:
            return "unsigned long";
        case VT_I8:
            return "int64";
        case VT_UI8:
            return "uint64";
        case VT_INT:
            return "int";
        case VT_UINT:
            return "unsigned int";
        case VT_R4:
            return "single";
        case VT_R8:
            return "double";
        case VT_BSTR:
            return "BSTR";
        case VT_BOOL:
            return "VARIANT_BOOL";
        case VT_VARIANT:
            return "VARIANT";
        case VT_DISPATCH:
            return "IDispatch*";
        case VT_UNKNOWN:
            return "IUnknown*";
        case VT_DATE:
            return "DATE";
        case VT_CY:
            return "CURRENCY";
        case VT_ERROR:
            return "SCODE";
        case VT_HRESULT:
            return "HRESULT";
        case VT_VOID:
            return "void";
        default:
            return nullptr;
    }
}

std::string TypeName(ITypeInfo& info, const TYPEDESC& described) {
    // Pointers and arrays wrap a type; their marks are gathered on the way down to it.
    std::string before;
    std::string after;
    const TYPEDESC* type = &described;
    for (;; type = type->lptdesc) {
        if (type->vt == VT_PTR) {
            after.insert(0, "*");
        } else if (type->vt == VT_SAFEARRAY) {
            before += "SAFEARRAY(";
            after.insert(0, ")");
        } else {
            break;
        }
    }
    std::string name;
    if (type->vt == VT_USERDEFINED) {
        ComPtr<ITypeInfo> referred;
        Check(info.GetRefTypeInfo(type->hreftype, referred.Out()), "reading a named type");
        name = DocumentationOf(*referred.Get(), MEMBERID_NIL).name;
    } else if (const char* plain = PlainTypeName(type->vt)) {
        name = plain;
    } else {
        name = "type " + std::to_string(type->vt);
    }
    return before + name + after;
}

std::string ValueText(const VARIANT& value) {
    VARIANT text;
    VariantInit(&text);
    Check(VariantChangeType(&text, &value, 0, VT_BSTR),
          "reading a value from the type information");
    std::string result = ToUtf8(std::u16string_view(text.bstrVal, SysStringLen(text.bstrVal)));
    VariantClear(&text);
    return value.vt == VT_BSTR ? "\"" + result + "\"" : result;
}

const char* KindOf(INVOKEKIND kind) {
    switch (kind) {
        case INVOKE_PROPERTYGET:
            return "get";
        case INVOKE_PROPERTYPUT:
            return "put";
        case INVOKE_PROPERTYPUTREF:
            return "putref";
        case INVOKE_FUNC:
            break;
    }
    return "method";
}

/// The names of a member and of its arguments; empty for an argument without one.
std::vector<std::string> NamesOf(ITypeInfo& info, const FUNCDESC& function) {
    std::vector<BSTR> names(static_cast<std::size_t>(function.cParams) + 1, nullptr);
    std::uint32_t count = 0;
    Check(info.GetNames(function.memid, names.data(), static_cast<std::uint32_t>(names.size()),
                        &count),
          "reading the names of a method");
    std::vector<std::string> result(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] != nullptr && i < count) {
            result[i] = ToUtf8(std::u16string_view(names[i], SysStringLen(names[i])));
        }
        SysFreeString(names[i]);
    }
    return result;
}

MethodDescription ReadMethod(ITypeInfo& info, const FUNCDESC& function) {
    MethodDescription method;
    method.id = function.memid;
    method.kind = KindOf(function.invkind);
    const std::vector<std::string> names = NamesOf(info, function);
    method.name = names[0];
    method.help = DocumentationOf(info, function.memid).help;
    for (std::int16_t i = 0; i < function.cParams; ++i) {
        const ELEMDESC& described = function.lprgelemdescParam[i];
        const std::uint16_t flags = described.paramdesc.wParamFlags;
        ArgumentDescription argument;
        argument.name = names[static_cast<std::size_t>(i) + 1];
        argument.type = TypeName(info, described.tdesc);
        argument.in = (flags & PARAMFLAG_FIN) != 0;
        argument.out = (flags & PARAMFLAG_FOUT) != 0;
        argument.result = (flags & PARAMFLAG_FRETVAL) != 0;
        argument.optional = (flags & PARAMFLAG_FOPT) != 0;
        if (argument.name.empty()) {  // so it is for a property's new value and for a result
            argument.name = argument.result ? "result" : "value";
        }
        if ((flags & PARAMFLAG_FHASDEFAULT) != 0 && described.paramdesc.pparamdescex != nullptr) {
            argument.defaultValue = ValueText(described.paramdesc.pparamdescex->varDefaultValue);
        }
        method.arguments.push_back(std::move(argument));
    }
    return method;
}

InterfaceDescription ReadInterface(ITypeInfo& info, const TYPEATTR& attributes) {
    // The dispatch form of a dual interface may list what it inherits too; those members have
    // identifiers from this one on.
    constexpr std::uint32_t FirstInheritedId = 0x60000000;

    const Documentation documentation = DocumentationOf(info, MEMBERID_NIL);
    InterfaceDescription described{documentation.name,
                                   GuidText(attributes.guid),
                                   documentation.help,
                                   (attributes.wTypeFlags & TYPEFLAG_FDUAL) != 0,
                                   {}};
    for (std::uint32_t i = 0; i < attributes.cFuncs; ++i) {
        const Lent<FUNCDESC> function = FunctionOf(info, i);
        if (function->memid < 0 || static_cast<std::uint32_t>(function->memid) < FirstInheritedId) {
            described.methods.push_back(ReadMethod(info, *function));
        }
    }
    return described;
}

ClassDescription ReadClass(ITypeInfo& info, const TYPEATTR& attributes) {
    const Documentation documentation = DocumentationOf(info, MEMBERID_NIL);
    ClassDescription described{
        documentation.name, GuidText(attributes.guid), "", documentation.help, {}};
    char16_t* progId = nullptr;
    if (Succeeded(ProgIDFromCLSID(attributes.guid, &progId)) && progId != nullptr) {
        described.progId = ToUtf8(progId);
        CoTaskMemFree(progId);
    }
    for (std::uint32_t i = 0; i < attributes.cImplTypes; ++i) {
        HREFTYPE reference = 0;
        std::int32_t flags = 0;
        ComPtr<ITypeInfo> implemented;
        Check(info.GetRefTypeOfImplType(i, &reference), "reading a class's interfaces");
        Check(info.GetImplTypeFlags(i, &flags), "reading a class's interfaces");
        Check(info.GetRefTypeInfo(reference, implemented.Out()), "reading a class's interfaces");
        described.interfaces.push_back({DocumentationOf(*implemented.Get(), MEMBERID_NIL).name,
                                        (flags & IMPLTYPEFLAG_FDEFAULT) != 0,
                                        (flags & IMPLTYPEFLAG_FSOURCE) != 0});
    }
    return described;
}

TypeDescription ReadType(ITypeInfo& info, const TYPEATTR& attributes) {
    const Documentation documentation = DocumentationOf(info, MEMBERID_NIL);
    TypeDescription described{"", documentation.name, documentation.help, {}};
    if (attributes.typekind == TKIND_ALIAS) {
        described.kind = "alias";
        described.members.push_back({TypeName(info, attributes.tdescAlias), ""});
        return described;
    }
    described.kind = attributes.typekind == TKIND_ENUM ? "enum" : "record";
    for (std::uint32_t i = 0; i < attributes.cVars; ++i) {
        const Lent<VARDESC> variable = VariableOf(info, i);
        const std::string value = variable->varkind == VAR_CONST && variable->lpvarValue != nullptr
                                      ? ValueText(*variable->lpvarValue)
                                      : TypeName(info, variable->elemdescVar.tdesc);
        described.members.push_back({DocumentationOf(info, variable->memid).name, value});
    }
    return described;
}

std::string ModulePath() {
    Dl_info module{};
    if (dladdr(reinterpret_cast<const void*>(&DllGetClassObject), &module) == 0 ||
        module.dli_fname == nullptr) {
        throw Failure("the library's own file cannot be found");
    }
    return module.dli_fname;
}

}  // namespace

LibraryDescription ReadTypeLibrary() {
    LibraryDescription described;
    described.path = ModulePath();
    ComPtr<ITypeLib> library;
    SetErrorInfo(0, nullptr);
    Check(LoadTypeLib(ToUtf16(described.path).c_str(), library.Out()),
          "reading the type library of " + described.path);

    Bstr name;
    Bstr help;
    Check(library->GetDocumentation(-1, name.Out(), help.Out(), nullptr, nullptr),
          "reading the name of the type library");
    described.name = ToUtf8(name.View());
    described.help = ToUtf8(help.View());
    TLIBATTR* attributes = nullptr;
    Check(library->GetLibAttr(&attributes), "reading the attributes of the type library");
    described.libid = GuidText(attributes->guid);
    described.version =
        std::to_string(attributes->wMajorVerNum) + "." + std::to_string(attributes->wMinorVerNum);
    library->ReleaseTLibAttr(attributes);

    const std::uint32_t count = library->GetTypeInfoCount();
    for (std::uint32_t i = 0; i < count; ++i) {
        ComPtr<ITypeInfo> info;
        Check(library->GetTypeInfo(i, info.Out()), "reading the type library");
        const Lent<TYPEATTR> type = AttributesOf(*info.Get());
        switch (type->typekind) {
            case TKIND_COCLASS:
                described.classes.push_back(ReadClass(*info.Get(), *type));
                break;
            case TKIND_INTERFACE:
            case TKIND_DISPATCH:
                described.interfaces.push_back(ReadInterface(*info.Get(), *type));
                break;
            default:
                described.types.push_back(ReadType(*info.Get(), *type));
                break;
        }
    }
    return described;
}

}  // namespace generalutilities::cli
