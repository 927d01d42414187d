// What clients in other languages lay out and count by hand: sizes, offsets, places in tables.

#include <generalutilities/automation/device_context.h>
#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/type_information.h>

#include "case_table.h"
#include "frame/interface_descriptions.h"

#include <cstring>
#include <map>

namespace generalutilities {
namespace {

#define GENERALUTILITIES_OFFSET(type, field, offset) static_assert(offsetof(type, field) == offset)
static_assert(sizeof(HRESULT) == 4 && sizeof(VARIANT_BOOL) == 2 && VARIANT_TRUE == -1);
static_assert(sizeof(GUID) == 16 && alignof(GUID) == 4 && offsetof(GUID, Data4) == 8);
static_assert(sizeof(VARIANT) == 24 && offsetof(VARIANT, bstrVal) == 8);
GENERALUTILITIES_OFFSET(SAFEARRAY, fFeatures, 2);
GENERALUTILITIES_OFFSET(SAFEARRAY, cbElements, 4);
GENERALUTILITIES_OFFSET(SAFEARRAY, cLocks, 8);
GENERALUTILITIES_OFFSET(SAFEARRAY, pvData, 16);
static_assert(sizeof(SAFEARRAYBOUND) == 8 && sizeof(SAFEARRAY) == 24 + 8);
static_assert(sizeof(tagRECT) == 16 && offsetof(tagRECT, bottom) == 12);
static_assert(sizeof(LOGFONT) == 60 && offsetof(LOGFONT, lfFaceName) == 28);
static_assert(sizeof(DeviceContextPixels) == 24);
static_assert(sizeof(DISPPARAMS) == 24 && offsetof(DISPPARAMS, cNamedArgs) == 20);
GENERALUTILITIES_OFFSET(EXCEPINFO, bstrSource, 8);
GENERALUTILITIES_OFFSET(EXCEPINFO, dwHelpContext, 32);
GENERALUTILITIES_OFFSET(EXCEPINFO, pfnDeferredFillIn, 48);
GENERALUTILITIES_OFFSET(EXCEPINFO, scode, 56);
static_assert(sizeof(EXCEPINFO) == 64);
static_assert(sizeof(CONNECTDATA) == 16);
static_assert(sizeof(ELEMDESC) == 32 && offsetof(PARAMDESCEX, varDefaultValue) == 8);
GENERALUTILITIES_OFFSET(FUNCDESC, funckind, 24);
GENERALUTILITIES_OFFSET(FUNCDESC, cParams, 36);
GENERALUTILITIES_OFFSET(FUNCDESC, oVft, 40);
GENERALUTILITIES_OFFSET(FUNCDESC, elemdescFunc, 48);
static_assert(sizeof(FUNCDESC) == 88);
GENERALUTILITIES_OFFSET(VARDESC, elemdescVar, 24);
static_assert(sizeof(VARDESC) == 64);
GENERALUTILITIES_OFFSET(TYPEATTR, typekind, 44);
GENERALUTILITIES_OFFSET(TYPEATTR, tdescAlias, 64);
static_assert(sizeof(TYPEATTR) == 96);
static_assert(sizeof(TLIBATTR) == 32 && offsetof(TLIBATTR, wMajorVerNum) == 24);
#undef GENERALUTILITIES_OFFSET

template <class Member>
std::size_t Place(Member member) {
    std::size_t word;
    std::memcpy(&word, &member, sizeof word);
    return (word - 1) / sizeof(void*);
}

/// The members stand in this order from place `first` on, and nothing stands behind them.
template <class Interface, class... Members>
void ExpectTable(std::size_t first, Members... members) {
    struct Behind : Interface {
        virtual void EndOfTable() noexcept = 0;
    };
    const std::size_t places[] = {Place(members)..., Place(&Behind::EndOfTable)};
    for (std::size_t i = 0; i < std::size(places); ++i) {
        EXPECT_EQ(places[i], first + i) << typeid(Interface).name();
    }
}

TEST(TableOrderTest, PublishedInterfacesKeepTheirs) {
    ExpectTable<IUnknown>(0, &IUnknown::QueryInterface, &IUnknown::AddRef, &IUnknown::Release);
    ExpectTable<IDispatch>(3, &IDispatch::GetTypeInfoCount, &IDispatch::GetTypeInfo,
                           &IDispatch::GetIDsOfNames, &IDispatch::Invoke);
    ExpectTable<IClassFactory>(3, &IClassFactory::CreateInstance, &IClassFactory::LockServer);
    ExpectTable<ISupportErrorInfo>(3, &ISupportErrorInfo::InterfaceSupportsErrorInfo);
    ExpectTable<IErrorInfo>(3, &IErrorInfo::GetGUID, &IErrorInfo::GetSource,
                            &IErrorInfo::GetDescription, &IErrorInfo::GetHelpFile,
                            &IErrorInfo::GetHelpContext);
    ExpectTable<ICreateErrorInfo>(3, &ICreateErrorInfo::SetGUID, &ICreateErrorInfo::SetSource,
                                  &ICreateErrorInfo::SetDescription, &ICreateErrorInfo::SetHelpFile,
                                  &ICreateErrorInfo::SetHelpContext);
    ExpectTable<IEnumVARIANT>(3, &IEnumVARIANT::Next, &IEnumVARIANT::Skip, &IEnumVARIANT::Reset,
                              &IEnumVARIANT::Clone);
    ExpectTable<IEnumConnections>(3, &IEnumConnections::Next, &IEnumConnections::Skip,
                                  &IEnumConnections::Reset, &IEnumConnections::Clone);
    ExpectTable<IEnumConnectionPoints>(3, &IEnumConnectionPoints::Next,
                                       &IEnumConnectionPoints::Skip, &IEnumConnectionPoints::Reset,
                                       &IEnumConnectionPoints::Clone);
    ExpectTable<IConnectionPoint>(3, &IConnectionPoint::GetConnectionInterface,
                                  &IConnectionPoint::GetConnectionPointContainer,
                                  &IConnectionPoint::Advise, &IConnectionPoint::Unadvise,
                                  &IConnectionPoint::EnumConnections);
    ExpectTable<IConnectionPointContainer>(3, &IConnectionPointContainer::EnumConnectionPoints,
                                           &IConnectionPointContainer::FindConnectionPoint);
    ExpectTable<ITypeInfo>(
        3, &ITypeInfo::GetTypeAttr, &ITypeInfo::GetTypeComp, &ITypeInfo::GetFuncDesc,
        &ITypeInfo::GetVarDesc, &ITypeInfo::GetNames, &ITypeInfo::GetRefTypeOfImplType,
        &ITypeInfo::GetImplTypeFlags, &ITypeInfo::GetIDsOfNames, &ITypeInfo::Invoke,
        &ITypeInfo::GetDocumentation, &ITypeInfo::GetDllEntry, &ITypeInfo::GetRefTypeInfo,
        &ITypeInfo::AddressOfMember, &ITypeInfo::CreateInstance, &ITypeInfo::GetMops,
        &ITypeInfo::GetContainingTypeLib, &ITypeInfo::ReleaseTypeAttr, &ITypeInfo::ReleaseFuncDesc,
        &ITypeInfo::ReleaseVarDesc);
    ExpectTable<ITypeLib>(3, &ITypeLib::GetTypeInfoCount, &ITypeLib::GetTypeInfo,
                          &ITypeLib::GetTypeInfoType, &ITypeLib::GetTypeInfoOfGuid,
                          &ITypeLib::GetLibAttr, &ITypeLib::GetTypeComp,
                          &ITypeLib::GetDocumentation, &ITypeLib::IsName, &ITypeLib::FindName,
                          &ITypeLib::ReleaseTLibAttr);
    ExpectTable<IDictionary>(7, &IDictionary::putref_Item, &IDictionary::put_Item,
                             &IDictionary::get_Item, &IDictionary::Add, &IDictionary::get_Count,
                             &IDictionary::Exists, &IDictionary::Items, &IDictionary::put_Key,
                             &IDictionary::Keys, &IDictionary::Remove, &IDictionary::RemoveAll,
                             &IDictionary::put_CompareMode, &IDictionary::get_CompareMode,
                             &IDictionary::get__NewEnum, &IDictionary::get_HashVal);
}

TEST(TableOrderTest, OwnInterfacesAreTheListedOnes) {
    std::map<std::u16string, std::vector<std::vector<std::u16string>>> listed, described;
    for (const auto& row : CaseTable("interface_tables.tsv")) {
        listed[row[0]].push_back({row.begin() + 1, row.end()});
    }
    for (const auto describe :
         {DescribeStringUtils, DescribeITDReader, DescribeITDWriter, DescribeQLNSort,
          DescribeExtViewHelper, DescribeLongSet, DescribeUDrawText, DescribeLongStack,
          DescribeQLNDictionary, DescribeCodePageHelper}) {
        const InterfaceDescription& interface = describe();
        std::size_t offset = 7 * sizeof(void*);
        for (const Method& method : interface.methods) {
            const std::string id = std::to_string(method.id);
            described[interface.name].push_back({method.kind == INVOKE_FUNC          ? u"call"
                                                 : method.kind == INVOKE_PROPERTYGET ? u"get"
                                                                                     : u"put",
                                                 {id.begin(), id.end()},
                                                 method.name});
            EXPECT_EQ(static_cast<std::size_t>(method.tableOffset), offset) << id;
            offset += sizeof(void*);
        }
    }
    for (const auto& [interface, table] : listed) {
        EXPECT_EQ(described[interface], table);
    }
    EXPECT_EQ(described.size(), listed.size());
}

}  // namespace
}  // namespace generalutilities
