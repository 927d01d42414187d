// What clients in other languages count by hand: places in the tables of published interfaces.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/type_information.h>

#include <cstring>
#include <gtest/gtest.h>
#include <typeinfo>

namespace generalutilities {
namespace {

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

}  // namespace
}  // namespace generalutilities
