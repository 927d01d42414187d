// The type library, read as a client reads it, beside data/type_library.tsv.

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/utf8.h>

#include "case_table.h"
#include "platform/component_runtime/guid_text.h"
#include "values.h"

namespace generalutilities {
namespace {

std::ostream& operator<<(std::ostream& out, const Bstr& text) {
    return out << ToUtf8(text.View());
}

/// The name of a type or of its member.
Bstr Name(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
    Bstr name;
    EXPECT_EQ(info->GetDocumentation(member, name.Out(), nullptr, nullptr, nullptr), S_OK);
    return name;
}

/// A type as a header has it: a VARTYPE or a name, and a star for each pointer.
void TellType(std::ostream& out, ITypeInfo* info, const TYPEDESC& type) {
    if (type.vt == VT_PTR || type.vt == VT_SAFEARRAY) {
        TellType(out, info, *type.lptdesc);
        out << (type.vt == VT_PTR ? "*" : "[]");
    } else if (type.vt == VT_USERDEFINED) {
        ComPtr<ITypeInfo> referred;
        EXPECT_EQ(info->GetRefTypeInfo(type.hreftype, referred.Out()), S_OK);
        out << Name(referred.Get());
    } else {
        out << type.vt;
    }
}

void TellImplemented(std::ostream& out, ITypeInfo* info, std::uint32_t index) {
    TYPEDESC type{};
    type.vt = VT_USERDEFINED;
    std::int32_t flags = 0;
    EXPECT_EQ(info->GetRefTypeOfImplType(index, &type.hreftype), S_OK);
    EXPECT_EQ(info->GetImplTypeFlags(index, &flags), S_OK);
    TellType(out, info, type);
    out << " " << flags;
}

void TellFunction(std::ostream& out, ITypeInfo* info, std::uint32_t index) {
    FUNCDESC* function = nullptr;
    EXPECT_EQ(info->GetFuncDesc(index, &function), S_OK);
    BSTR names[17] = {};
    std::uint32_t known = 0;
    EXPECT_EQ(info->GetNames(function->memid, names, 17, &known), S_OK);
    out << function->memid << " " << function->invkind << " " << function->oVft << " "
        << ToUtf8(names[0]);
    for (std::int16_t i = 0; i < function->cParams; ++i) {
        const ELEMDESC& argument = function->lprgelemdescParam[i];
        TellType(out << ", ", info, argument.tdesc);
        out << " " << argument.paramdesc.wParamFlags;
        if (argument.paramdesc.pparamdescex != nullptr) {
            out << "=" << ToUtf8(Text(argument.paramdesc.pparamdescex->varDefaultValue));
        }
        if (const BSTR name = names[i + 1]) {
            out << " " << ToUtf8(name);
        }
    }
    std::for_each(names, names + known, SysFreeString);
    TellType(out << ": ", info, function->elemdescFunc.tdesc);
    info->ReleaseFuncDesc(function);
}

void TellVariable(std::ostream& out, ITypeInfo* info, std::uint32_t index) {
    VARDESC* variable = nullptr;
    EXPECT_EQ(info->GetVarDesc(index, &variable), S_OK);
    out << Name(info, variable->memid) << " ";
    variable->varkind == VAR_CONST ? out << variable->lpvarValue->lVal : out << variable->oInst;
    info->ReleaseVarDesc(variable);
}

TEST(TypeLibraryTest, HoldsWhatIsListed) {
    ComPtr<ITypeLib> library;
    ASSERT_EQ(LoadTypeLib(std::filesystem::path(MODULE_PATH).u16string().c_str(), library.Out()),
              S_OK);
    std::ostringstream out;
    Bstr name, help;
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetDocumentation(-1, name.Out(), help.Out(), nullptr, nullptr), S_OK);
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    out << name << " " << GuidText(attributes->guid) << " " << attributes->wMajorVerNum << "."
        << attributes->wMinorVerNum << " " << help;
    library->ReleaseTLibAttr(attributes);
    for (std::uint32_t i = 0; i < library->GetTypeInfoCount(); ++i) {
        ComPtr<ITypeInfo> info, found;
        TYPEATTR* type = nullptr;
        ASSERT_EQ(library->GetTypeInfo(i, info.Out()), S_OK);
        ASSERT_EQ(info->GetDocumentation(MEMBERID_NIL, name.Out(), help.Out(), nullptr, nullptr),
                  S_OK);
        ASSERT_EQ(info->GetTypeAttr(&type), S_OK);
        out << "\n"
            << name << " is " << type->typekind << " " << GuidText(type->guid) << " "
            << type->wTypeFlags << " " << type->cbSizeVft << " " << help;
        if (type->typekind == TKIND_ALIAS) {
            TellType(out, info.Get(), type->tdescAlias);
        }
        for (const auto& [count, tell] : {std::pair{type->cImplTypes, &TellImplemented},
                                          {type->cFuncs, &TellFunction},
                                          {type->cVars, &TellVariable}}) {
            for (std::uint32_t n = 0; n < count; ++n) {
                tell(out << "\n", info.Get(), n);
            }
        }
        FUNCDESC* function = nullptr;
        EXPECT_EQ(info->GetFuncDesc(type->cFuncs, &function), TYPE_E_ELEMENTNOTFOUND);
        EXPECT_EQ(library->GetTypeInfoOfGuid(type->guid, found.Out()),
                  type->guid == GUID_NULL ? TYPE_E_ELEMENTNOTFOUND : S_OK);
        EXPECT_TRUE(!found || Name(found.Get()).View() == name.View());
        info->ReleaseTypeAttr(type);
    }
    std::string listed;
    for (const auto& row : CaseTable("type_library.tsv")) {
        listed += (listed.empty() ? "" : "\n") + ToUtf8(row[0]);
    }
    EXPECT_EQ(out.str(), listed);
    TYPEKIND kind{};
    EXPECT_EQ(library->GetTypeInfoType(28, &kind), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(LoadTypeLib(u"/bin/sh", library.Out()), TYPE_E_CANTLOADLIBRARY);
}

TEST(TypeLibraryTest, AnObjectGivesTheInformationOfItsDefaultInterface) {
    const auto helper = Create<IExtViewHelper>(CLSID_ExtViewHelper, IID_IExtViewHelper);
    std::uint32_t count = 0;
    EXPECT_EQ(helper->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(helper->GetTypeInfo(1, 0, info.Out()), DISP_E_BADINDEX);
    ASSERT_EQ(helper->GetTypeInfo(0, 0, info.Out()), S_OK);
    EXPECT_EQ(Name(info.Get()).View(), u"IExtViewHelper");

    // Late binding through the type information alone, on the default interface.
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    VARIANT font{};
    ASSERT_EQ(info->Invoke(helper.Get(), 2, DISPATCH_PROPERTYGET, &none, &font, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(TakeText(font), u"Tahoma");

    ComPtr<ITypeLib> library;
    ComPtr<ITypeInfo> type;
    ComPtr<IUnknown> created;
    std::uint32_t index = 0;
    ASSERT_EQ(info->GetContainingTypeLib(library.Out(), &index), S_OK);
    ASSERT_EQ(library->GetTypeInfoOfGuid(CLSID_ExtViewHelper, type.Out()), S_OK);
    EXPECT_EQ(type->CreateInstance(nullptr, IID_IExtViewHelper, created.OutVoid()), S_OK);
}

}  // namespace
}  // namespace generalutilities
