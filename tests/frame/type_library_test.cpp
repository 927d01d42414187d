// The type library, read as a client reads it.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/string_utils.h>

#include <gtest/gtest.h>
#include <map>

namespace generalutilities {
namespace {

std::u16string Wide(const std::string& text) {
    return {text.begin(), text.end()};
}

class TypeLibraryTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(LoadTypeLib(Wide(MODULE_PATH).c_str(), library.Out()), S_OK);
    }
    ComPtr<ITypeInfo> Type(REFGUID guid) {
        ComPtr<ITypeInfo> info;
        EXPECT_EQ(library->GetTypeInfoOfGuid(guid, info.Out()), S_OK);
        return info;
    }
    static std::u16string Name(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
        Bstr name;
        EXPECT_EQ(info->GetDocumentation(member, name.Out(), nullptr, nullptr, nullptr), S_OK);
        return name.Text();
    }
    ComPtr<ITypeLib> library;
};

TEST_F(TypeLibraryTest, HoldsTwentyEightTypes) {
    EXPECT_EQ(library->GetTypeInfoCount(), 28u);
    std::map<TYPEKIND, int> kinds;
    for (std::uint32_t i = 0; i < 28; ++i) {
        TYPEKIND kind{};
        ASSERT_EQ(library->GetTypeInfoType(i, &kind), S_OK);
        ++kinds[kind];
        Bstr name, help;
        ASSERT_EQ(library->GetDocumentation(static_cast<std::int32_t>(i), name.Out(), help.Out(),
                                            nullptr, nullptr),
                  S_OK);
        if (kind == TKIND_DISPATCH) {
            EXPECT_EQ(help.View(), name.Text() + u" Interface");
        } else if (kind == TKIND_COCLASS) {
            EXPECT_EQ(help.View(), name.View() == u"CodePageHelper" ? u"CodePagerHelper Class"
                                                                    : name.Text() + u" Class");
        }
    }
    EXPECT_EQ(kinds, (std::map<TYPEKIND, int>{{TKIND_COCLASS, 10},
                                              {TKIND_DISPATCH, 11},
                                              {TKIND_RECORD, 1},
                                              {TKIND_ENUM, 4},
                                              {TKIND_ALIAS, 2}}));
    Bstr name, help;
    library->GetDocumentation(-1, name.Out(), help.Out(), nullptr, nullptr);
    EXPECT_EQ(name.View(), u"GeneralUtilities");
    EXPECT_EQ(help.View(), u"Quillon General Utilities Library");
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, LIBID_GeneralUtilities);
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    library->ReleaseTLibAttr(attributes);

    TYPEKIND kind{};
    EXPECT_EQ(library->GetTypeInfoType(28, &kind), TYPE_E_ELEMENTNOTFOUND);
    ComPtr<ITypeInfo> none;
    EXPECT_EQ(library->GetTypeInfoOfGuid(GUID_NULL, none.Out()), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(LoadTypeLib(u"/bin/sh", library.Out()), TYPE_E_CANTLOADLIBRARY);
}

TEST_F(TypeLibraryTest, ClassesNameTheirInterfaces) {
    const auto helper = Type(CLSID_ExtViewHelper);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(helper->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
    EXPECT_EQ(attributes->cImplTypes, 2);
    EXPECT_EQ(attributes->wTypeFlags, TYPEFLAG_FCANCREATE);
    helper->ReleaseTypeAttr(attributes);
    const std::pair<const char16_t*, std::int32_t> expected[] = {
        {u"IExtViewHelper", IMPLTYPEFLAG_FDEFAULT},
        {u"_IExtViewHelperEvents", IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE}};
    for (std::uint32_t i = 0; i < 2; ++i) {
        HREFTYPE reference = 0;
        std::int32_t flags = 0;
        ComPtr<ITypeInfo> implemented;
        ASSERT_EQ(helper->GetRefTypeOfImplType(i, &reference), S_OK);
        ASSERT_EQ(helper->GetImplTypeFlags(i, &flags), S_OK);
        ASSERT_EQ(helper->GetRefTypeInfo(reference, implemented.Out()), S_OK);
        EXPECT_EQ(Name(implemented.Get()), expected[i].first);
        EXPECT_EQ(flags, expected[i].second);
    }
    const auto utils = Type(CLSID_StringUtils);
    ASSERT_EQ(utils->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->wTypeFlags, TYPEFLAG_FCANCREATE | TYPEFLAG_FAPPOBJECT);
    utils->ReleaseTypeAttr(attributes);
    ComPtr<IStringUtils> created;
    EXPECT_EQ(utils->CreateInstance(nullptr, IID_IStringUtils, created.OutVoid()), S_OK);
}

TEST_F(TypeLibraryTest, MethodsTellTheirArgumentsAndDefaults) {
    const auto utils = Type(IID_IStringUtils);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(utils->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->cFuncs, 23);
    EXPECT_EQ(attributes->wTypeFlags,
              TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE);
    utils->ReleaseTypeAttr(attributes);

    FUNCDESC* function = nullptr;
    ASSERT_EQ(utils->GetFuncDesc(21, &function), S_OK);  // ToIndex
    EXPECT_EQ(function->memid, 21);
    EXPECT_EQ(function->cParams, 4);
    EXPECT_EQ(function->oVft, (7 + 21) * 8);
    const ELEMDESC& size = function->lprgelemdescParam[2];
    EXPECT_EQ(size.tdesc.vt, VT_I4);
    EXPECT_EQ(size.paramdesc.wParamFlags, PARAMFLAG_FIN | PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT);
    EXPECT_EQ(size.paramdesc.pparamdescex->varDefaultValue.lVal, 50);
    const ELEMDESC& result = function->lprgelemdescParam[3];
    EXPECT_EQ(result.tdesc.vt, VT_PTR);
    EXPECT_EQ(result.tdesc.lptdesc->vt, VT_BSTR);
    EXPECT_EQ(result.paramdesc.wParamFlags, PARAMFLAG_FOUT | PARAMFLAG_FRETVAL);
    utils->ReleaseFuncDesc(function);

    ASSERT_EQ(utils->GetFuncDesc(19, &function), S_OK);  // ParseString: an alias behind a pointer
    ComPtr<ITypeInfo> alias, enumeration;
    const TYPEDESC* const wordType = function->lprgelemdescParam[3].tdesc.lptdesc;
    ASSERT_EQ(wordType->vt, VT_USERDEFINED);
    ASSERT_EQ(utils->GetRefTypeInfo(wordType->hreftype, alias.Out()), S_OK);
    utils->ReleaseFuncDesc(function);
    ASSERT_EQ(alias->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_ALIAS);
    ASSERT_EQ(alias->GetRefTypeInfo(attributes->tdescAlias.hreftype, enumeration.Out()), S_OK);
    alias->ReleaseTypeAttr(attributes);
    EXPECT_EQ(Name(enumeration.Get()), u"WordTypeEnum");
    VARDESC* constant = nullptr;
    ASSERT_EQ(enumeration->GetVarDesc(4, &constant), S_OK);
    EXPECT_EQ(constant->lpvarValue->lVal, qlnwtCode);
    EXPECT_EQ(Name(enumeration.Get(), constant->memid), u"qlnwtCode");
    enumeration->ReleaseVarDesc(constant);

    BSTR names[8] = {};
    std::uint32_t count = 0;
    ASSERT_EQ(utils->GetNames(14, names, 8, &count), S_OK);
    ASSERT_EQ(count, 6u);
    EXPECT_EQ(std::u16string(names[5]), u"CodeContents");
    for (BSTR name : names) {
        SysFreeString(name);
    }
    EXPECT_EQ(utils->GetFuncDesc(23, &function), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(utils->GetNames(99, names, 8, &count), TYPE_E_ELEMENTNOTFOUND);
}

TEST_F(TypeLibraryTest, AnObjectGivesTheInformationOfItsDefaultInterface) {
    ComPtr<IDispatch> helper;
    ASSERT_EQ(CoCreateInstance(CLSID_ExtViewHelper, nullptr, 1, IID_IDispatch, helper.OutVoid()),
              S_OK);
    std::uint32_t count = 0;
    EXPECT_EQ(helper->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(helper->GetTypeInfo(1, 0, info.Out()), DISP_E_BADINDEX);
    ASSERT_EQ(helper->GetTypeInfo(0, 0, info.Out()), S_OK);
    EXPECT_EQ(Name(info.Get()), u"IExtViewHelper");

    // Late binding through the type information alone, on the default interface.
    ComPtr<IExtViewHelper> typed;
    helper->QueryInterface(IID_IExtViewHelper, typed.OutVoid());
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    VARIANT font{};
    ASSERT_EQ(info->Invoke(typed.Get(), 2, DISPATCH_PROPERTYGET, &none, &font, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(std::u16string(font.bstrVal), u"Tahoma");
    VariantClear(&font);
}

}  // namespace
}  // namespace generalutilities
