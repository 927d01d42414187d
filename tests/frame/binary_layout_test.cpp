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
    {
        using I = ITypeInfo;
        ExpectTable<I>(3, &I::GetTypeAttr, &I::GetTypeComp, &I::GetFuncDesc, &I::GetVarDesc,
                       &I::GetNames, &I::GetRefTypeOfImplType, &I::GetImplTypeFlags,
                       &I::GetIDsOfNames, &I::Invoke, &I::GetDocumentation, &I::GetDllEntry,
                       &I::GetRefTypeInfo, &I::AddressOfMember, &I::CreateInstance, &I::GetMops,
                       &I::GetContainingTypeLib, &I::ReleaseTypeAttr, &I::ReleaseFuncDesc,
                       &I::ReleaseVarDesc);
    }
    {
        using I = ITypeLib;
        ExpectTable<I>(3, &I::GetTypeInfoCount, &I::GetTypeInfo, &I::GetTypeInfoType,
                       &I::GetTypeInfoOfGuid, &I::GetLibAttr, &I::GetTypeComp, &I::GetDocumentation,
                       &I::IsName, &I::FindName, &I::ReleaseTLibAttr);
    }
    {
        using I = IDictionary;
        ExpectTable<I>(7, &I::putref_Item, &I::put_Item, &I::get_Item, &I::Add, &I::get_Count,
                       &I::Exists, &I::Items, &I::put_Key, &I::Keys, &I::Remove, &I::RemoveAll,
                       &I::put_CompareMode, &I::get_CompareMode, &I::get__NewEnum, &I::get_HashVal);
    }
}

}  // namespace
}  // namespace generalutilities
