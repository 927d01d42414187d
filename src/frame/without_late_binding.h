#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// `IDispatch` of a component that is called through its table alone.
template <class Interface>
class WithoutLateBinding : public Interface {
  public:
    HRESULT GetTypeInfoCount(std::uint32_t* count) noexcept override {
        if (count == nullptr) {
            return E_POINTER;
        }
        *count = 0;
        return S_OK;
    }
    HRESULT GetTypeInfo(std::uint32_t, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, char16_t**, std::uint32_t, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT Invoke(DISPID, REFIID, LCID, std::uint16_t, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                   std::uint32_t*) noexcept override {
        return E_NOTIMPL;
    }
};

}  // namespace generalutilities
