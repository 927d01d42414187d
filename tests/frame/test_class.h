#pragma once

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

namespace generalutilities {

/// A class of the tests' own with one interface.
template <class Interface, const InterfaceDescription& (*Describe)()>
class TestClass : public Dual<Interface, Describe> {
  public:
    void* FindInterface(REFIID iid) noexcept {
        Interface* const self = this;
        return FindInTable(iid,
                           {{IID_IUnknown, self}, {IID_IDispatch, self}, {Describe().iid, self}});
    }
    HRESULT Start() noexcept { return S_OK; }
};

template <class Value>
HRESULT Give(Value* place, const Value& value) {
    *place = value;
    return S_OK;
}

}  // namespace generalutilities
