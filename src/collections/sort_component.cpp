#include "collections/sort_component.h"

#include <generalutilities/automation/functions.h>
#include <generalutilities/collections/sort.h>

namespace generalutilities {
namespace {

/// The caller's function; null for a number that stands for nothing.
CompareElements FunctionOf(std::int32_t handle) {
    return reinterpret_cast<CompareElements>(PointerFromHandle(handle));
}

}  // namespace

void* CQLNSort::FindInterface(REFIID iid) noexcept {
    IQLNSort* const standard = this;
    ISupportErrorInfo* const errors = this;
    return FindInTable(iid, {{IID_IUnknown, standard},
                             {IID_IDispatch, standard},
                             {IID_IQLNSort, standard},
                             {IID_ISupportErrorInfo, errors}});
}

HRESULT CQLNSort::Sort(void* pArray, std::int32_t lEleSize, std::int32_t lEleCount,
                       std::int32_t pCompFunc) noexcept {
    if (pCompFunc == 0) {
        return S_FALSE;
    }
    if (lEleCount <= 0) {
        return S_OK;
    }
    if (pArray == nullptr) {
        return E_POINTER;
    }
    const CompareElements compare = FunctionOf(pCompFunc);
    if (compare == nullptr || lEleSize <= 0) {
        return E_INVALIDARG;
    }
    return Guarded([&] {
        SortElements(pArray, static_cast<std::size_t>(lEleSize),
                     static_cast<std::size_t>(lEleCount), compare);
        return S_OK;
    });
}

HRESULT CQLNSort::StringSort(SAFEARRAY** pArray, std::int32_t pCompFunc) noexcept {
    if (pCompFunc == 0) {
        return S_FALSE;
    }
    const CompareElements compare = FunctionOf(pCompFunc);
    if (compare == nullptr) {
        return E_INVALIDARG;
    }
    if (pArray == nullptr) {
        return E_POINTER;
    }
    VARTYPE type = VT_EMPTY;
    std::int32_t lower = 0;
    std::int32_t upper = 0;
    if (*pArray == nullptr || Failed(SafeArrayGetVartype(*pArray, &type)) || type != VT_BSTR ||
        Failed(SafeArrayGetLBound(*pArray, 1, &lower)) ||
        Failed(SafeArrayGetUBound(*pArray, 1, &upper))) {
        return E_INVALIDARG;
    }
    void* strings = nullptr;
    if (const HRESULT status = SafeArrayAccessData(*pArray, &strings); Failed(status)) {
        return status;
    }
    const auto count = static_cast<std::size_t>(std::int64_t{upper} - lower + 1);
    const HRESULT status = Guarded([&] {
        SortElements(strings, sizeof(BSTR), count, compare);
        return S_OK;
    });
    SafeArrayUnaccessData(*pArray);
    return status;
}

}  // namespace generalutilities
