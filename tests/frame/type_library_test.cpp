// The type library, read as a client reads it.

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/string_utils.h>

#include "values.h"

#include <map>

namespace generalutilities {
namespace {

class TypeLibraryTest : public testing::Test {
  protected:
    void SetUp() override {
        const std::string path = MODULE_PATH;
        ASSERT_EQ(LoadTypeLib(std::u16string(path.begin(), path.end()).c_str(), library.Out()),
                  S_OK);
    }
    ComPtr<ITypeInfo> Type(REFGUID guid) {
        ComPtr<ITypeInfo> info;
        EXPECT_EQ(library->GetTypeInfoOfGuid(guid, info.Out()), S_OK);
        return info;
    }
    static TYPEATTR Attributes(ITypeInfo* info) {
        TYPEATTR* attributes = nullptr;
        EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
        const TYPEATTR copy = *attributes;
        info->ReleaseTypeAttr(attributes);
        return copy;
    }
    static ComPtr<ITypeInfo> Referred(ITypeInfo* info, HREFTYPE reference) {
        ComPtr<ITypeInfo> referred;
        EXPECT_EQ(info->GetRefTypeInfo(reference, referred.Out()), S_OK);
        return referred;
    }
    static std::u16string Name(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
        Bstr name;
        EXPECT_EQ(info->GetDocumentation(member, name.Out(), nullptr, nullptr, nullptr), S_OK);
        return name.Text();
    }
    ComPtr<ITypeLib> library;
    Bstr name, help;
};

TEST_F(TypeLibraryTest, HoldsTwentyEightTypes) {
    EXPECT_EQ(library->GetTypeInfoCount(), 28u);
    std::map<TYPEKIND, int> kinds;
    TYPEKIND kind{};
    for (std::uint32_t i = 0; i < 28; ++i) {
        ASSERT_EQ(library->GetTypeInfoType(i, &kind), S_OK);
        ++kinds[kind];
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
    library->GetDocumentation(-1, name.Out(), help.Out(), nullptr, nullptr);
    EXPECT_EQ(name.View(), u"GeneralUtilities");
    EXPECT_EQ(help.View(), u"Quillon General Utilities Library");
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, LIBID_GeneralUtilities);
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    library->ReleaseTLibAttr(attributes);

    EXPECT_EQ(library->GetTypeInfoType(28, &kind), TYPE_E_ELEMENTNOTFOUND);
    ComPtr<ITypeInfo> none;
    EXPECT_EQ(library->GetTypeInfoOfGuid(GUID_NULL, none.Out()), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(LoadTypeLib(u"/bin/sh", library.Out()), TYPE_E_CANTLOADLIBRARY);
}

TEST_F(TypeLibraryTest, ClassesNameTheirInterfaces) {
    const auto helper = Type(CLSID_ExtViewHelper);
    EXPECT_EQ(Attributes(helper.Get()).cImplTypes, 2);
    EXPECT_EQ(Attributes(helper.Get()).wTypeFlags, TYPEFLAG_FCANCREATE);
    const std::pair<const char16_t*, std::int32_t> expected[] = {
        {u"IExtViewHelper", IMPLTYPEFLAG_FDEFAULT},
        {u"_IExtViewHelperEvents", IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE}};
    for (std::uint32_t i = 0; i < 2; ++i) {
        HREFTYPE reference = 0;
        std::int32_t flags = 0;
        ASSERT_EQ(helper->GetRefTypeOfImplType(i, &reference), S_OK);
        ASSERT_EQ(helper->GetImplTypeFlags(i, &flags), S_OK);
        EXPECT_EQ(Name(Referred(helper.Get(), reference).Get()), expected[i].first);
        EXPECT_EQ(flags, expected[i].second);
    }
    const auto utils = Type(CLSID_StringUtils);
    EXPECT_EQ(Attributes(utils.Get()).wTypeFlags, TYPEFLAG_FCANCREATE | TYPEFLAG_FAPPOBJECT);
    ComPtr<IStringUtils> created;
    EXPECT_EQ(utils->CreateInstance(nullptr, IID_IStringUtils, created.OutVoid()), S_OK);
}

TEST_F(TypeLibraryTest, MethodsTellTheirArgumentsAndDefaults) {
    const auto utils = Type(IID_IStringUtils);
    EXPECT_EQ(Attributes(utils.Get()).cFuncs, 23);
    EXPECT_EQ(Attributes(utils.Get()).wTypeFlags,
              TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE);

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
    const TYPEDESC* const wordType = function->lprgelemdescParam[3].tdesc.lptdesc;
    ASSERT_EQ(wordType->vt, VT_USERDEFINED);
    const auto alias = Referred(utils.Get(), wordType->hreftype);
    utils->ReleaseFuncDesc(function);
    const TYPEATTR meaning = Attributes(alias.Get());
    EXPECT_EQ(meaning.typekind, TKIND_ALIAS);
    const auto enumeration = Referred(alias.Get(), meaning.tdescAlias.hreftype);
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
    std::for_each(names, names + count, SysFreeString);
    EXPECT_EQ(utils->GetFuncDesc(23, &function), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(utils->GetNames(99, names, 8, &count), TYPE_E_ELEMENTNOTFOUND);
}

TEST_F(TypeLibraryTest, AnObjectGivesTheInformationOfItsDefaultInterface) {
    const auto helper = Create<IDispatch>(CLSID_ExtViewHelper, IID_IDispatch);
    std::uint32_t count = 0;
    EXPECT_EQ(helper->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(helper->GetTypeInfo(1, 0, info.Out()), DISP_E_BADINDEX);
    ASSERT_EQ(helper->GetTypeInfo(0, 0, info.Out()), S_OK);
    EXPECT_EQ(Name(info.Get()), u"IExtViewHelper");

    // Late binding through the type information alone, on the default interface.
    const auto typed = helper.As<IExtViewHelper>(IID_IExtViewHelper);
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    VARIANT font{};
    ASSERT_EQ(info->Invoke(typed.Get(), 2, DISPATCH_PROPERTYGET, &none, &font, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(TakeText(font), u"Tahoma");
}

}  // namespace
}  // namespace generalutilities
