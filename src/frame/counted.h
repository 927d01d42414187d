#pragma once

#include <generalutilities/automation/unknown.h>

#include <atomic>
#include <cstdint>

namespace generalutilities {

/// `IUnknown` of a small helper object with one interface: an enumerator, a type library. Such
/// objects count their references atomically, do not lock the module, and start with no reference.
template <class Object, class Interface, const IID& Identifier>
class Counted : public Interface {
  public:
    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = iid == IID_IUnknown || iid == Identifier ? this : nullptr;
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override {
        const std::uint32_t left = --references;
        if (left == 0) {
            delete static_cast<Object*>(this);
        }
        return left;
    }

  private:
    std::atomic<std::uint32_t> references{0};
};

}  // namespace generalutilities
