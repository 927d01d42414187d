#include "frame/class_factory.h"

namespace generalutilities {

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) {
        return E_NOINTERFACE;
    }
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
}

std::uint32_t ClassFactory::AddRef() noexcept {
    const std::uint32_t now = ++references;
    if (now == 2) {
        LockModule();
    }
    return now;
}

std::uint32_t ClassFactory::Release() noexcept {
    const std::uint32_t left = --references;
    if (left == 1) {
        UnlockModule();
    } else if (left == 0) {
        delete this;
    }
    return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr && iid != IID_IUnknown) {
        return CLASS_E_NOAGGREGATION;
    }
    return creator(outer, iid, object);
}

HRESULT ClassFactory::LockServer(std::int32_t lock) noexcept {
    if (lock != 0) {
        LockModule();
    } else {
        UnlockModule();
    }
    return S_OK;
}

}  // namespace generalutilities
