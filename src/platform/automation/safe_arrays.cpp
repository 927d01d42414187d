// Arrays with bounds. The element type stands in the four bytes before the descriptor; the
// dimensions of the descriptor are stored last first; in the data the first dimension varies
// fastest.

#include <generalutilities/automation/functions.h>

#include "platform/automation/element_size.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace generalutilities {

std::uint32_t ElementSize(VARTYPE type) noexcept {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_ERROR:
        case VT_R4:
            return 4;
        case VT_I8:
        case VT_UI8:
        case VT_CY:
        case VT_R8:
        case VT_DATE:
        case VT_BSTR:
        case VT_UNKNOWN:
        case VT_DISPATCH:
            return 8;
        case VT_VARIANT:
            return sizeof(VARIANT);
        default:
            return 0;
    }
}

namespace {

constexpr std::size_t PrefixSize = 16;  ///< keeps the descriptor aligned; its end holds the type

/// The types whose elements own something, and the features that tell them.
constexpr std::pair<VARTYPE, std::uint16_t> OwnershipFeatures[] = {{VT_BSTR, FADF_BSTR},
                                                                   {VT_UNKNOWN, FADF_UNKNOWN},
                                                                   {VT_DISPATCH, FADF_DISPATCH},
                                                                   {VT_VARIANT, FADF_VARIANT}};

std::uint16_t OwnershipFeature(VARTYPE type) {
    for (const auto& [owning, feature] : OwnershipFeatures) {
        if (owning == type) {
            return feature;
        }
    }
    return 0;
}

std::uint32_t& TypeSlot(SAFEARRAY* array) {
    return reinterpret_cast<std::uint32_t*>(array)[-1];
}

/// The type of the elements. A descriptor that the caller has made tells it by its features alone,
/// and VT_EMPTY stands for elements that own nothing.
VARTYPE TypeOf(SAFEARRAY* array) {
    if ((array->fFeatures & FADF_HAVEVARTYPE) != 0) {
        return static_cast<VARTYPE>(TypeSlot(array));
    }
    for (const auto& [owning, feature] : OwnershipFeatures) {
        if ((array->fFeatures & feature) != 0) {
            return owning;
        }
    }
    return VT_EMPTY;
}

/// The number of elements, which was checked when the array was made.
std::size_t ElementCount(const SAFEARRAY* array) {
    std::size_t count = 1;
    for (std::uint16_t i = 0; i < array->cDims; ++i) {
        count *= array->rgsabound[i].cElements;
    }
    return count;
}

HRESULT CopyElement(VARTYPE type, std::uint32_t size, const void* from, void* to) {
    switch (type) {
        case VT_BSTR: {
            BSTR source;
            std::memcpy(&source, from, sizeof source);
            BSTR copy = source == nullptr
                            ? nullptr
                            : SysAllocStringByteLen(reinterpret_cast<const char*>(source),
                                                    SysStringByteLen(source));
            if (source != nullptr && copy == nullptr) {
                return E_OUTOFMEMORY;
            }
            std::memcpy(to, &copy, sizeof copy);
            return S_OK;
        }
        case VT_UNKNOWN:
        case VT_DISPATCH: {
            IUnknown* object;
            std::memcpy(&object, from, sizeof object);
            if (object != nullptr) {
                object->AddRef();
            }
            std::memcpy(to, &object, sizeof object);
            return S_OK;
        }
        case VT_VARIANT: {
            VARIANT copy{};
            const HRESULT status = VariantCopy(&copy, static_cast<const VARIANT*>(from));
            std::memcpy(to, &copy, sizeof copy);
            return status;
        }
        default:
            std::memcpy(to, from, size);
            return S_OK;
    }
}

void ClearElement(VARTYPE type, void* element) {
    if (type == VT_BSTR) {
        SysFreeString(*static_cast<BSTR*>(element));
    } else if (type == VT_VARIANT) {
        VariantClear(static_cast<VARIANT*>(element));
    } else if (type == VT_UNKNOWN || type == VT_DISPATCH) {
        if (IUnknown* const object = *static_cast<IUnknown**>(element); object != nullptr) {
            object->Release();
        }
    }
}

char* Data(SAFEARRAY* array) {
    return static_cast<char*>(array->pvData);
}

/// The address of the element, or null when an index lies outside its bounds.
char* ElementAt(SAFEARRAY* array, const std::int32_t* indices) {
    std::size_t offset = 0;
    std::size_t stride = 1;
    for (std::uint16_t dimension = 0; dimension < array->cDims; ++dimension) {
        const SAFEARRAYBOUND& bound = array->rgsabound[array->cDims - 1 - dimension];
        const std::int64_t index = std::int64_t{indices[dimension]} - bound.lLbound;
        if (index < 0 || index >= std::int64_t{bound.cElements}) {
            return nullptr;
        }
        offset += static_cast<std::size_t>(index) * stride;
        stride *= bound.cElements;
    }
    return Data(array) + offset * array->cbElements;
}

bool HasDimension(const SAFEARRAY* array, std::uint32_t dimension) {
    return dimension >= 1 && dimension <= array->cDims;
}

}  // namespace

extern "C" {

SAFEARRAY* SafeArrayCreate(VARTYPE type, std::uint32_t dimensions,
                           SAFEARRAYBOUND* bounds) noexcept {
    const std::uint32_t size = ElementSize(type);
    if (size == 0 || dimensions == 0 || dimensions > 65535 || bounds == nullptr) {
        return nullptr;
    }
    std::size_t bytes = size;
    for (std::uint32_t i = 0; i < dimensions; ++i) {
        if (__builtin_mul_overflow(bytes, std::size_t{bounds[i].cElements}, &bytes) ||
            bytes > std::numeric_limits<std::uint32_t>::max()) {
            return nullptr;
        }
    }
    char* const block = static_cast<char*>(
        std::calloc(1, PrefixSize + offsetof(SAFEARRAY, rgsabound) + dimensions * sizeof *bounds));
    if (block == nullptr) {
        return nullptr;
    }
    auto* const array = reinterpret_cast<SAFEARRAY*>(block + PrefixSize);
    array->cDims = static_cast<std::uint16_t>(dimensions);
    array->fFeatures = static_cast<std::uint16_t>(FADF_HAVEVARTYPE | OwnershipFeature(type));
    array->cbElements = size;
    TypeSlot(array) = type;
    for (std::uint32_t i = 0; i < dimensions; ++i) {
        array->rgsabound[dimensions - 1 - i] = bounds[i];
    }
    array->pvData = std::calloc(bytes == 0 ? 1 : bytes, 1);
    if (array->pvData == nullptr) {
        std::free(block);
        return nullptr;
    }
    return array;
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE type, std::int32_t lowerBound,
                                 std::uint32_t count) noexcept {
    SAFEARRAYBOUND bound{count, lowerBound};
    return SafeArrayCreate(type, 1, &bound);
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) noexcept {
    if (array == nullptr) {
        return S_OK;
    }
    if (array->cLocks != 0) {
        return DISP_E_ARRAYISLOCKED;
    }
    const VARTYPE type = TypeOf(array);
    if (OwnershipFeature(type) != 0) {
        for (std::size_t i = 0, count = ElementCount(array); i < count; ++i) {
            ClearElement(type, Data(array) + i * array->cbElements);
        }
    }
    std::free(array->pvData);
    std::free(reinterpret_cast<char*>(array) - PrefixSize);
    return S_OK;
}

std::uint32_t SafeArrayGetDim(SAFEARRAY* array) noexcept {
    return array == nullptr ? 0 : array->cDims;
}

HRESULT SafeArrayGetLBound(SAFEARRAY* array, std::uint32_t dimension,
                           std::int32_t* bound) noexcept {
    if (array == nullptr || bound == nullptr) {
        return E_INVALIDARG;
    }
    if (!HasDimension(array, dimension)) {
        return DISP_E_BADINDEX;
    }
    *bound = array->rgsabound[array->cDims - dimension].lLbound;
    return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, std::uint32_t dimension,
                           std::int32_t* bound) noexcept {
    if (array == nullptr || bound == nullptr) {
        return E_INVALIDARG;
    }
    if (!HasDimension(array, dimension)) {
        return DISP_E_BADINDEX;
    }
    const SAFEARRAYBOUND& stored = array->rgsabound[array->cDims - dimension];
    *bound = static_cast<std::int32_t>(static_cast<std::uint32_t>(stored.lLbound) +
                                       stored.cElements - 1);
    return S_OK;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) noexcept {
    if (array == nullptr || type == nullptr || TypeOf(array) == VT_EMPTY) {
        return E_INVALIDARG;
    }
    *type = TypeOf(array);
    return S_OK;
}

HRESULT SafeArrayGetElement(SAFEARRAY* array, std::int32_t* indices, void* element) noexcept {
    if (array == nullptr || indices == nullptr || element == nullptr) {
        return E_INVALIDARG;
    }
    const char* const stored = ElementAt(array, indices);
    if (stored == nullptr) {
        return DISP_E_BADINDEX;
    }
    return CopyElement(TypeOf(array), array->cbElements, stored, element);
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, std::int32_t* indices, void* element) noexcept {
    if (array == nullptr || indices == nullptr) {
        return E_INVALIDARG;
    }
    char* const stored = ElementAt(array, indices);
    if (stored == nullptr) {
        return DISP_E_BADINDEX;
    }
    const VARTYPE type = TypeOf(array);
    const bool isPointer = type == VT_BSTR || type == VT_UNKNOWN || type == VT_DISPATCH;
    if (element == nullptr && !isPointer) {
        return E_INVALIDARG;
    }
    VARIANT copy;  // room for the largest element
    if (const HRESULT status =
            CopyElement(type, array->cbElements, isPointer ? &element : element, &copy);
        Failed(status)) {
        return status;
    }
    ClearElement(type, stored);
    std::memcpy(stored, &copy, array->cbElements);
    return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* array) noexcept {
    if (array == nullptr) {
        return E_INVALIDARG;
    }
    if (array->cLocks == std::numeric_limits<std::uint16_t>::max()) {
        return E_UNEXPECTED;
    }
    ++array->cLocks;
    return S_OK;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) noexcept {
    if (array == nullptr) {
        return E_INVALIDARG;
    }
    if (array->cLocks == 0) {
        return E_UNEXPECTED;
    }
    --array->cLocks;
    return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) noexcept {
    if (data == nullptr) {
        return E_INVALIDARG;
    }
    const HRESULT status = SafeArrayLock(array);
    *data = Succeeded(status) ? array->pvData : nullptr;
    return status;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) noexcept {
    return SafeArrayUnlock(array);
}

HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy) noexcept {
    if (copy == nullptr) {
        return E_INVALIDARG;
    }
    *copy = nullptr;
    if (array == nullptr) {
        return S_OK;
    }
    const VARTYPE type = TypeOf(array);
    // The bounds are stored last first; `SafeArrayCreate` takes them first first.
    auto* const bounds =
        static_cast<SAFEARRAYBOUND*>(std::malloc(array->cDims * sizeof(SAFEARRAYBOUND)));
    if (bounds == nullptr) {
        return E_OUTOFMEMORY;
    }
    for (std::uint16_t i = 0; i < array->cDims; ++i) {
        bounds[i] = array->rgsabound[array->cDims - 1 - i];
    }
    SAFEARRAY* const result = SafeArrayCreate(type, array->cDims, bounds);
    std::free(bounds);
    if (result == nullptr) {
        return E_OUTOFMEMORY;
    }
    for (std::size_t i = 0, count = ElementCount(array); i < count; ++i) {
        const HRESULT status =
            CopyElement(type, array->cbElements, Data(array) + i * array->cbElements,
                        Data(result) + i * array->cbElements);
        if (Failed(status)) {
            SafeArrayDestroy(result);
            return status;
        }
    }
    *copy = result;
    return S_OK;
}

}  // extern "C"
}  // namespace generalutilities
