#pragma once

#include "frame/interface_description.h"
#include "frame/object.h"

namespace generalutilities {

HRESULT DispatchGetTypeInfo(REFIID iid, std::uint32_t index, ITypeInfo** info) noexcept;
HRESULT DispatchGetIDsOfNames(const InterfaceDescription& interface, REFIID reserved,
                              char16_t** names, std::uint32_t count, DISPID* ids) noexcept;
HRESULT DispatchInvoke(const InterfaceDescription& interface, void* instance, DISPID member,
                       REFIID reserved, std::uint16_t flags, DISPPARAMS* arguments, VARIANT* result,
                       EXCEPINFO* exception, std::uint32_t* badArgument) noexcept;

/// The four operations of `IDispatch` for a class whose default interface is `Interface`, derived
/// from the interface's description.
template <class Interface, const InterfaceDescription& (*Describe)()>
class Dual : public Interface {
  public:
    HRESULT GetTypeInfoCount(std::uint32_t* count) noexcept override {
        if (count == nullptr) {
            return E_POINTER;
        }
        *count = 1;
        return S_OK;
    }
    HRESULT GetTypeInfo(std::uint32_t index, LCID, ITypeInfo** info) noexcept override {
        return DispatchGetTypeInfo(Describe().iid, index, info);
    }
    HRESULT GetIDsOfNames(REFIID reserved, char16_t** names, std::uint32_t count, LCID,
                          DISPID* ids) noexcept override {
        return DispatchGetIDsOfNames(Describe(), reserved, names, count, ids);
    }
    HRESULT Invoke(DISPID member, REFIID reserved, LCID, std::uint16_t flags, DISPPARAMS* arguments,
                   VARIANT* result, EXCEPINFO* exception,
                   std::uint32_t* badArgument) noexcept override {
        return DispatchInvoke(Describe(), static_cast<Interface*>(this), member, reserved, flags,
                              arguments, result, exception, badArgument);
    }
};

/// `ISupportErrorInfo` of a class: rich errors for its default interface and for nothing else.
template <const IID& DefaultInterface>
class RichErrors : public ISupportErrorInfo {
  public:
    HRESULT InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
        return iid == DefaultInterface ? S_OK : S_FALSE;
    }
};

}  // namespace generalutilities
