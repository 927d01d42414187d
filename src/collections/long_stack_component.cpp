#include "collections/long_stack_component.h"

#include <algorithm>

namespace generalutilities {

void* CLongStack::FindInterface(REFIID iid) noexcept {
    ILongStack* const standard = this;
    return FindInTable(
        iid, {{IID_IUnknown, standard}, {IID_IDispatch, standard}, {IID_ILongStack, standard}});
}

HRESULT CLongStack::Push(std::int32_t lValue) noexcept {
    return Guarded([&] {
        values.push_back(lValue);
        return S_OK;
    });
}

HRESULT CLongStack::Pop(std::int32_t* plValue) noexcept {
    const HRESULT status = Peek(plValue);
    if (status == S_OK) {
        values.pop_back();
    }
    return status;
}

HRESULT CLongStack::Peek(std::int32_t* plValue) noexcept {
    if (plValue == nullptr) {
        return E_POINTER;
    }
    if (values.empty()) {
        return E_FAIL;
    }
    *plValue = values.back();
    return S_OK;
}

HRESULT CLongStack::Contains(std::int32_t lValue, VARIANT_BOOL* pbExists) noexcept {
    if (pbExists == nullptr) {
        return E_POINTER;
    }
    const bool found = std::find(values.rbegin(), values.rend(), lValue) != values.rend();
    *pbExists = found ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

}  // namespace generalutilities
