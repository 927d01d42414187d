#include "frame/type_library.h"

#include <generalutilities/automation/pointers.h>

#include "frame/counted.h"
#include "frame/object.h"

namespace generalutilities {

namespace {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

/// Gives a text out as a BSTR unless the caller does not want it. An absent text is a null BSTR.
HRESULT GiveText(std::u16string_view text, BSTR* out) {
    if (out == nullptr) {
        return S_OK;
    }
    *out = text.empty() ? nullptr
                        : SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()));
    return !text.empty() && *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

class TypeLibrary final : public Counted<TypeLibrary, ITypeLib, IID_ITypeLib> {
  public:
    explicit TypeLibrary(const TypeLibraryDescription& described) : library(described) {}

    std::uint32_t GetTypeInfoCount() noexcept override {
        return static_cast<std::uint32_t>(library.types.size());
    }
    HRESULT GetTypeInfo(std::uint32_t index, ITypeInfo** info) noexcept override {
        return OpenTypeInformation(library, index, info);
    }
    HRESULT GetTypeInfoType(std::uint32_t index, TYPEKIND* kind) noexcept override {
        if (kind == nullptr) {
            return E_INVALIDARG;
        }
        if (index >= library.types.size()) {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        *kind = KindOf(library.types[index]);
        return S_OK;
    }
    HRESULT GetTypeInfoOfGuid(REFGUID guid, ITypeInfo** info) noexcept override {
        if (info == nullptr) {
            return E_INVALIDARG;
        }
        *info = nullptr;
        for (std::uint32_t i = 0; i < library.types.size(); ++i) {
            if (guid != GUID_NULL && GuidOf(library.types[i]) == guid) {
                return OpenTypeInformation(library, i, info);
            }
        }
        return TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT GetLibAttr(TLIBATTR** attributes) noexcept override {
        if (attributes == nullptr) {
            return E_INVALIDARG;
        }
        *attributes = new (std::nothrow)
            TLIBATTR{library.id, 0, SYS_WIN64, library.majorVersion, library.minorVersion, 0};
        return *attributes == nullptr ? E_OUTOFMEMORY : S_OK;
    }
    HRESULT GetTypeComp(ITypeComp**) noexcept override { return E_NOTIMPL; }
    HRESULT GetDocumentation(std::int32_t index, BSTR* name, BSTR* help, std::uint32_t* helpContext,
                             BSTR* helpFile) noexcept override {
        return Guarded([&] {
            if (index >= static_cast<std::int32_t>(library.types.size()) || index < -1) {
                return TYPE_E_ELEMENTNOTFOUND;
            }
            if (helpContext != nullptr) {
                *helpContext = 0;
            }
            GiveText({}, helpFile);
            const bool whole = index == -1;
            const TypeDescription* type =
                whole ? nullptr : &library.types[static_cast<std::size_t>(index)];
            const HRESULT status = GiveText(whole ? library.name : NameOf(*type), name);
            return Failed(status)
                       ? status
                       : GiveText(whole ? std::u16string(library.help) : HelpOf(*type), help);
        });
    }
    HRESULT IsName(char16_t* name, std::uint32_t, std::int32_t* found) noexcept override {
        if (name == nullptr || found == nullptr) {
            return E_INVALIDARG;
        }
        *found = library.IndexOf(name).has_value() ? 1 : 0;
        return S_OK;
    }
    HRESULT FindName(char16_t* name, std::uint32_t, ITypeInfo** infos, MEMBERID* ids,
                     std::uint16_t* count) noexcept override {
        if (name == nullptr || infos == nullptr || ids == nullptr || count == nullptr) {
            return E_INVALIDARG;
        }
        const auto index = library.IndexOf(name);
        if (!index || *count == 0) {
            *count = 0;
            return S_OK;
        }
        *count = 1;
        ids[0] = MEMBERID_NIL;
        return OpenTypeInformation(library, *index, infos);
    }
    void ReleaseTLibAttr(TLIBATTR* attributes) noexcept override { delete attributes; }

  private:
    const TypeLibraryDescription& library;
};

}  // namespace

std::optional<std::uint32_t> TypeLibraryDescription::IndexOf(std::u16string_view typeName) const {
    for (std::uint32_t i = 0; i < types.size(); ++i) {
        if (SameName(NameOf(types[i]), typeName)) {
            return i;
        }
    }
    return std::nullopt;
}

const char16_t* NameOf(const TypeDescription& type) {
    return std::visit(
        Overloaded{[](const InterfaceDescription* interface) { return interface->name; },
                   [](const auto& other) { return other.name; }},
        type);
}

TYPEKIND KindOf(const TypeDescription& type) {
    static constexpr TYPEKIND Kinds[] = {TKIND_COCLASS, TKIND_DISPATCH, TKIND_RECORD, TKIND_ENUM,
                                         TKIND_ALIAS};
    static_assert(std::variant_size_v<TypeDescription> == std::size(Kinds));
    return Kinds[type.index()];
}

GUID GuidOf(const TypeDescription& type) {
    return std::visit(
        Overloaded{[](const ClassDescription& described) { return described.clsid; },
                   [](const InterfaceDescription* interface) { return interface->iid; },
                   [](const auto&) { return GUID_NULL; }},
        type);
}

std::u16string HelpOf(const TypeDescription& type) {
    return std::visit(
        Overloaded{[](const ClassDescription& described) { return std::u16string(described.help); },
                   [](const InterfaceDescription* interface) {
                       return std::u16string(interface->name) + u" Interface";
                   },
                   [](const auto&) { return std::u16string(); }},
        type);
}

HRESULT OpenTypeLibrary(const TypeLibraryDescription& library, ITypeLib** opened) noexcept {
    if (opened == nullptr) {
        return E_INVALIDARG;
    }
    *opened = new (std::nothrow) TypeLibrary(library);
    if (*opened == nullptr) {
        return E_OUTOFMEMORY;
    }
    (*opened)->AddRef();
    return S_OK;
}

}  // namespace generalutilities
