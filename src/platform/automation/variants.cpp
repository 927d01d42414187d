// Life of a VARIANT: what it owns is freed by `VariantClear` and duplicated by `VariantCopy`; a
// by-reference value owns nothing.

#include <generalutilities/automation/functions.h>

#include "platform/automation/dereference.h"

#include <cstring>

namespace generalutilities {

namespace {

bool IsPlain(VARTYPE type) {
    switch (type) {
        case VT_EMPTY:
        case VT_NULL:
        case VT_I1:
        case VT_I2:
        case VT_I4:
        case VT_I8:
        case VT_UI1:
        case VT_UI2:
        case VT_UI4:
        case VT_UI8:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_R8:
        case VT_CY:
        case VT_DATE:
        case VT_BOOL:
        case VT_ERROR:
        case VT_DECIMAL:
        case VT_RECORD:  // the record belongs to its owner: the library keeps none
            return true;
        default:
            return false;
    }
}

}  // namespace

HRESULT Dereference(const VARIANT& source, VARIANT& direct) noexcept {
    if ((source.vt & VT_BYREF) == 0) {
        direct = source;
        return S_OK;
    }
    if (source.byref == nullptr) {
        return E_INVALIDARG;
    }
    direct = VARIANT{};
    direct.vt = static_cast<VARTYPE>(source.vt & ~VT_BYREF);
    if ((direct.vt & VT_ARRAY) != 0) {
        direct.parray = *source.pparray;
        return S_OK;
    }
    switch (direct.vt) {
        case VT_VARIANT:
            if ((source.pvarVal->vt & VT_BYREF) != 0 &&
                (source.pvarVal->vt & VT_TYPEMASK) == VT_VARIANT) {
                return E_INVALIDARG;  // one level of indirection is the rule
            }
            return Dereference(*source.pvarVal, direct);
        case VT_I1:
        case VT_UI1:
            direct.bVal = *static_cast<std::uint8_t*>(source.byref);
            break;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            direct.iVal = *source.piVal;
            break;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_ERROR:
        case VT_R4:
            direct.lVal = *source.plVal;
            break;
        case VT_I8:
        case VT_UI8:
        case VT_CY:
        case VT_R8:
        case VT_DATE:
            direct.llVal = *static_cast<std::int64_t*>(source.byref);
            break;
        case VT_DECIMAL:
            std::memcpy(&direct, source.byref, 16);
            direct.vt = VT_DECIMAL;
            break;
        case VT_BSTR:
            direct.bstrVal = *source.pbstrVal;
            break;
        case VT_UNKNOWN:
        case VT_DISPATCH:
            direct.punkVal = *source.ppunkVal;
            break;
        default:
            return DISP_E_BADVARTYPE;
    }
    return S_OK;
}

extern "C" {

void VariantInit(VARIANT* variant) noexcept {
    if (variant != nullptr) {
        *variant = VARIANT{};
    }
}

HRESULT VariantClear(VARIANT* variant) noexcept {
    if (variant == nullptr) {
        return E_INVALIDARG;
    }
    if ((variant->vt & VT_BYREF) == 0) {
        if ((variant->vt & VT_ARRAY) != 0) {
            if (const HRESULT status = SafeArrayDestroy(variant->parray); Failed(status)) {
                return status;
            }
        } else if (variant->vt == VT_BSTR) {
            SysFreeString(variant->bstrVal);
        } else if (variant->vt == VT_UNKNOWN || variant->vt == VT_DISPATCH) {
            if (variant->punkVal != nullptr) {
                variant->punkVal->Release();
            }
        } else if (!IsPlain(variant->vt)) {
            return DISP_E_BADVARTYPE;
        }
    }
    *variant = VARIANT{};
    return S_OK;
}

HRESULT VariantCopy(VARIANT* destination, const VARIANT* source) noexcept {
    if (destination == nullptr || source == nullptr) {
        return E_INVALIDARG;
    }
    if (destination == source) {
        return S_OK;
    }
    VARIANT copy = *source;
    if ((source->vt & VT_BYREF) == 0) {
        if ((source->vt & VT_ARRAY) != 0) {
            copy.parray = nullptr;
            if (source->parray != nullptr) {
                if (const HRESULT status = SafeArrayCopy(source->parray, &copy.parray);
                    Failed(status)) {
                    return status;
                }
            }
        } else if (source->vt == VT_BSTR) {
            if (source->bstrVal != nullptr) {
                copy.bstrVal = SysAllocStringByteLen(reinterpret_cast<const char*>(source->bstrVal),
                                                     SysStringByteLen(source->bstrVal));
                if (copy.bstrVal == nullptr) {
                    return E_OUTOFMEMORY;
                }
            }
        } else if (source->vt == VT_UNKNOWN || source->vt == VT_DISPATCH) {
            if (source->punkVal != nullptr) {
                source->punkVal->AddRef();
            }
        } else if (!IsPlain(source->vt)) {
            return DISP_E_BADVARTYPE;
        }
    }
    if (const HRESULT status = VariantClear(destination); Failed(status)) {
        VariantClear(&copy);
        return status;
    }
    *destination = copy;
    return S_OK;
}

HRESULT VariantCopyInd(VARIANT* destination, const VARIANT* source) noexcept {
    if (destination == nullptr || source == nullptr) {
        return E_INVALIDARG;
    }
    VARIANT direct;
    const HRESULT status = Dereference(*source, direct);
    return Failed(status) ? status : VariantCopy(destination, &direct);
}

}  // extern "C"
}  // namespace generalutilities
