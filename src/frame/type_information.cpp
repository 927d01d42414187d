// Type information over the descriptions of a type library.
//
// The structures that are handed out (`FUNCDESC` and the like) stand at the front of a block that
// also owns what they point to; giving one back frees its block.

#include <generalutilities/automation/pointers.h>

#include "frame/counted.h"
#include "frame/invocation.h"
#include "frame/object.h"
#include "frame/type_library.h"

#include <memory>

namespace generalutilities {

namespace {

constexpr std::uint32_t InheritedOperations = 7;  // of `IUnknown` and `IDispatch`
constexpr std::uint16_t PointerSize = 8;

struct FunctionBlock {
    FUNCDESC desc{};
    std::vector<ELEMDESC> arguments;
    std::vector<std::unique_ptr<TYPEDESC>> pointees;
    std::vector<std::unique_ptr<PARAMDESCEX>> defaults;
};

struct VariableBlock {
    VARDESC desc{};
    VARIANT value{};
};

HRESULT AllocateText(std::u16string_view text, BSTR* out) {
    *out = SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

class TypeInformation final : public Counted<TypeInformation, ITypeInfo, IID_ITypeInfo> {
  public:
    TypeInformation(const TypeLibraryDescription& described, std::uint32_t typeIndex)
        : library(described), index(typeIndex), type(described.types[typeIndex]) {}

    HRESULT GetTypeAttr(TYPEATTR** attributes) noexcept override {
        if (attributes == nullptr) {
            return E_INVALIDARG;
        }
        auto* const made = new (std::nothrow) TYPEATTR{};
        *attributes = made;
        if (made == nullptr) {
            return E_OUTOFMEMORY;
        }
        made->guid = GuidOf(type);
        made->memidConstructor = made->memidDestructor = MEMBERID_NIL;
        made->typekind = KindOf(type);
        made->wMajorVerNum = library.majorVersion;
        made->wMinorVerNum = library.minorVersion;
        made->cbSizeInstance = PointerSize;
        made->cbAlignment = PointerSize;
        if (const InterfaceDescription* const interface = Interface()) {
            made->cFuncs = static_cast<std::uint16_t>(interface->methods.size());
            made->wTypeFlags = interface->typeFlags;
            const std::size_t operations =
                InheritedOperations + (interface->IsDual() ? interface->methods.size() : 0);
            made->cbSizeVft = static_cast<std::uint16_t>(operations * PointerSize);
        } else if (const auto* const described = std::get_if<ClassDescription>(&type)) {
            made->cImplTypes = described->sourceInterface != nullptr ? 2 : 1;
            made->wTypeFlags = described->typeFlags;
        } else if (const auto* const record = std::get_if<RecordDescription>(&type)) {
            made->cVars = static_cast<std::uint16_t>(record->fields.size());
            made->cbSizeInstance = static_cast<std::uint32_t>(4 * record->fields.size());
            made->cbAlignment = 4;
        } else if (const auto* const enumeration = std::get_if<EnumerationDescription>(&type)) {
            made->cVars = static_cast<std::uint16_t>(enumeration->constants.size());
            made->cbSizeInstance = made->cbAlignment = 4;
        } else if (const auto* const alias = std::get_if<AliasDescription>(&type)) {
            made->cbSizeInstance = made->cbAlignment = 4;
            made->tdescAlias.vt = VT_USERDEFINED;
            made->tdescAlias.hreftype = library.IndexOf(alias->target).value_or(0);
        }
        return S_OK;
    }
    void ReleaseTypeAttr(TYPEATTR* attributes) noexcept override { delete attributes; }

    HRESULT GetTypeComp(ITypeComp**) noexcept override { return E_NOTIMPL; }

    HRESULT GetFuncDesc(std::uint32_t position, FUNCDESC** function) noexcept override {
        if (function == nullptr) {
            return E_INVALIDARG;
        }
        *function = nullptr;
        const InterfaceDescription* const interface = Interface();
        if (interface == nullptr || position >= interface->methods.size()) {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        return Guarded([&] {
            *function = DescribeFunction(interface->methods[position], interface->IsDual());
            return S_OK;
        });
    }
    void ReleaseFuncDesc(FUNCDESC* function) noexcept override {
        delete reinterpret_cast<FunctionBlock*>(function);
    }

    HRESULT GetVarDesc(std::uint32_t position, VARDESC** variable) noexcept override {
        if (variable == nullptr) {
            return E_INVALIDARG;
        }
        *variable = nullptr;
        if (position >= VariableCount()) {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        return Guarded([&] {
            auto block = std::make_unique<VariableBlock>();
            block->desc.memid = static_cast<MEMBERID>(position);
            block->desc.elemdescVar.tdesc.vt = VT_I4;
            if (const auto* const enumeration = std::get_if<EnumerationDescription>(&type)) {
                block->value.vt = VT_I4;
                block->value.lVal = enumeration->constants[position].value;
                block->desc.varkind = VAR_CONST;
                block->desc.lpvarValue = &block->value;
            } else {
                block->desc.varkind = VAR_PERINSTANCE;
                block->desc.oInst = 4 * position;
            }
            *variable = &block.release()->desc;
            return S_OK;
        });
    }
    void ReleaseVarDesc(VARDESC* variable) noexcept override {
        delete reinterpret_cast<VariableBlock*>(variable);
    }

    HRESULT GetNames(MEMBERID member, BSTR* names, std::uint32_t room,
                     std::uint32_t* count) noexcept override {
        if (names == nullptr || count == nullptr) {
            return E_INVALIDARG;
        }
        *count = 0;
        std::vector<const char16_t*> found;
        if (const HRESULT status = Guarded([&] { return CollectNames(member, found); });
            Failed(status)) {
            return status;
        }
        for (; *count < room && *count < found.size(); ++*count) {
            if (const HRESULT status = AllocateText(found[*count], &names[*count]);
                Failed(status)) {
                return status;
            }
        }
        return S_OK;
    }

    HRESULT GetRefTypeOfImplType(std::uint32_t position, HREFTYPE* reference) noexcept override {
        const auto* const described = std::get_if<ClassDescription>(&type);
        if (reference == nullptr) {
            return E_INVALIDARG;
        }
        const char16_t* const name = described == nullptr ? nullptr
                                     : position == 0      ? described->defaultInterface
                                     : position == 1      ? described->sourceInterface
                                                          : nullptr;
        const auto found = name == nullptr ? std::nullopt : library.IndexOf(name);
        *reference = found.value_or(0);
        return found ? S_OK : TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT GetImplTypeFlags(std::uint32_t position, std::int32_t* flags) noexcept override {
        HREFTYPE unused;
        if (flags == nullptr) {
            return E_INVALIDARG;
        }
        *flags =
            position == 0 ? IMPLTYPEFLAG_FDEFAULT : IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE;
        return GetRefTypeOfImplType(position, &unused);
    }

    HRESULT GetIDsOfNames(char16_t** names, std::uint32_t count, MEMBERID* ids) noexcept override {
        const InterfaceDescription* const interface = Interface();
        return interface == nullptr ? TYPE_E_ELEMENTNOTFOUND
                                    : FindIds(*interface, names, count, ids);
    }
    HRESULT Invoke(void* instance, MEMBERID member, std::uint16_t flags, DISPPARAMS* arguments,
                   VARIANT* result, EXCEPINFO* exception,
                   std::uint32_t* badArgument) noexcept override {
        const InterfaceDescription* const interface = Interface();
        if (interface == nullptr || instance == nullptr) {
            return interface == nullptr ? DISP_E_MEMBERNOTFOUND : E_INVALIDARG;
        }
        return InvokeMember(*interface, instance, member, flags, arguments, result, exception,
                            badArgument);
    }

    HRESULT GetDocumentation(MEMBERID member, BSTR* name, BSTR* help, std::uint32_t* helpContext,
                             BSTR* helpFile) noexcept override {
        if (member == MEMBERID_NIL) {
            ComPtr<ITypeLib> opened;
            const HRESULT status = OpenTypeLibrary(library, opened.Out());
            return Failed(status) ? status
                                  : opened->GetDocumentation(static_cast<std::int32_t>(index), name,
                                                             help, helpContext, helpFile);
        }
        if (helpContext != nullptr) {
            *helpContext = 0;
        }
        for (BSTR* const absent : {help, helpFile}) {
            if (absent != nullptr) {
                *absent = nullptr;
            }
        }
        BSTR found = nullptr;
        std::uint32_t count = 0;
        const HRESULT status = GetNames(member, &found, 1, &count);
        if (name != nullptr) {
            *name = found;
        } else {
            SysFreeString(found);
        }
        return status;
    }
    HRESULT GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, std::uint16_t*) noexcept override {
        return TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT GetRefTypeInfo(HREFTYPE reference, ITypeInfo** info) noexcept override {
        return OpenTypeInformation(library, reference, info);
    }
    HRESULT AddressOfMember(MEMBERID, INVOKEKIND, void**) noexcept override {
        return TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        const auto* const described = std::get_if<ClassDescription>(&type);
        return described == nullptr
                   ? E_NOTIMPL
                   : CoCreateInstance(described->clsid, outer, CLSCTX_INPROC_SERVER, iid, object);
    }
    HRESULT GetMops(MEMBERID, BSTR* mops) noexcept override {
        if (mops == nullptr) {
            return E_INVALIDARG;
        }
        *mops = nullptr;
        return S_OK;
    }
    HRESULT GetContainingTypeLib(ITypeLib** opened, std::uint32_t* position) noexcept override {
        if (position != nullptr) {
            *position = index;
        }
        return OpenTypeLibrary(library, opened);
    }

  private:
    const InterfaceDescription* Interface() const {
        const auto* const interface = std::get_if<const InterfaceDescription*>(&type);
        return interface == nullptr ? nullptr : *interface;
    }

    std::size_t VariableCount() const {
        if (const auto* const enumeration = std::get_if<EnumerationDescription>(&type)) {
            return enumeration->constants.size();
        }
        const auto* const record = std::get_if<RecordDescription>(&type);
        return record == nullptr ? 0 : record->fields.size();
    }

    HRESULT CollectNames(MEMBERID member, std::vector<const char16_t*>& names) const {
        if (const InterfaceDescription* const interface = Interface()) {
            constexpr std::uint16_t Reading = INVOKE_FUNC | INVOKE_PROPERTYGET;
            const Method* method = FindMethod(*interface, member, Reading);
            method =
                method != nullptr ? method : FindMethod(*interface, member, INVOKE_PROPERTYPUT);
            if (method == nullptr) {
                return TYPE_E_ELEMENTNOTFOUND;
            }
            names.push_back(method->name);
            for (const Argument& argument : method->arguments) {
                if (!argument.IsResult()) {
                    names.push_back(argument.name);
                }
            }
            return S_OK;
        }
        const auto position = static_cast<std::size_t>(member);
        if (position >= VariableCount()) {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        if (const auto* const enumeration = std::get_if<EnumerationDescription>(&type)) {
            names.push_back(enumeration->constants[position].name);
        } else {
            names.push_back(std::get<RecordDescription>(type).fields[position]);
        }
        return S_OK;
    }

    TYPEDESC DescribeType(const ArgumentType& argument, FunctionBlock& block) const {
        TYPEDESC desc{};
        desc.vt = argument.base;
        if (argument.base == VT_USERDEFINED) {
            desc.hreftype = library.IndexOf(argument.userType).value_or(0);
        } else if (argument.base == VT_SAFEARRAY) {
            TYPEDESC element{};
            element.vt = argument.element;
            desc.lptdesc = block.pointees.emplace_back(std::make_unique<TYPEDESC>(element)).get();
        }
        for (std::uint8_t i = 0; i < argument.pointers; ++i) {
            TYPEDESC pointer{};
            pointer.vt = VT_PTR;
            pointer.lptdesc = block.pointees.emplace_back(std::make_unique<TYPEDESC>(desc)).get();
            desc = pointer;
        }
        return desc;
    }

    FUNCDESC* DescribeFunction(const Method& method, bool dual) const {
        auto block = std::make_unique<FunctionBlock>();
        for (const Argument& argument : method.arguments) {
            ELEMDESC element{};
            element.tdesc = DescribeType(argument.type, *block);
            element.paramdesc.wParamFlags = argument.flags;
            if ((argument.flags & PARAMFLAG_FHASDEFAULT) != 0) {
                PARAMDESCEX extra{sizeof(PARAMDESCEX), {}};
                StoreDefault(argument.defaultValue, extra.varDefaultValue);
                element.paramdesc.pparamdescex =
                    block->defaults.emplace_back(std::make_unique<PARAMDESCEX>(extra)).get();
            }
            block->arguments.push_back(element);
        }
        FUNCDESC& desc = block->desc;
        desc.memid = method.id;
        desc.lprgelemdescParam = block->arguments.data();
        desc.funckind = dual ? FUNC_PUREVIRTUAL : FUNC_DISPATCH;
        desc.invkind = method.kind;
        desc.callconv = CC_STDCALL;
        desc.cParams = static_cast<std::int16_t>(method.arguments.size());
        desc.oVft = method.tableOffset;
        desc.elemdescFunc.tdesc.vt = dual ? VT_HRESULT : VT_VOID;
        return &block.release()->desc;
    }

    const TypeLibraryDescription& library;
    std::uint32_t index;
    const TypeDescription& type;
};

}  // namespace

HRESULT OpenTypeInformation(const TypeLibraryDescription& library, std::uint32_t index,
                            ITypeInfo** opened) noexcept {
    if (opened == nullptr) {
        return E_INVALIDARG;
    }
    *opened = nullptr;
    if (index >= library.types.size()) {
        return TYPE_E_ELEMENTNOTFOUND;
    }
    *opened = new (std::nothrow) TypeInformation(library, index);
    if (*opened == nullptr) {
        return E_OUTOFMEMORY;
    }
    (*opened)->AddRef();
    return S_OK;
}

}  // namespace generalutilities
