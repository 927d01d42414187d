#pragma once

#include <generalutilities/status.h>

#include <cstddef>
#include <cstdint>

/// The automation values that cross the border of the library, in the layout of 64-bit Linux.
///
/// Ownership, once for all interfaces: an [in] value stays the caller's; an [out] value belongs to
/// the caller afterwards, who frees it (`SysFreeString`, `SafeArrayDestroy`, `Release`,
/// `VariantClear`); an [in,out] value is replaced by the callee, who frees what it held. A null
/// BSTR is a legal empty string.
namespace generalutilities {

struct IUnknown;
struct IDispatch;

/// 16 bytes: one 32-bit and two 16-bit fields in the machine's (little-endian) order, eight bytes.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend constexpr bool operator==(const GUID&, const GUID&) = default;
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const GUID&;
using REFCLSID = const GUID&;
using REFGUID = const GUID&;
static_assert(sizeof(GUID) == 16 && alignof(GUID) == 4 && offsetof(GUID, Data4) == 8);

inline constexpr GUID GUID_NULL{};

/// Reads "{C53CF962-B65A-4511-862C-19ED5EF1804F}" while compiling; a malformed text does not
/// compile.
consteval GUID MakeGuid(const char (&text)[39]) {
    const auto digit = [](char c) -> std::uint32_t {
        if (c >= '0' && c <= '9') {
            return static_cast<std::uint32_t>(c - '0');
        }
        if (c >= 'A' && c <= 'F') {
            return static_cast<std::uint32_t>(c - 'A' + 10);
        }
        throw "not a hexadecimal digit";
    };
    const auto number = [&](int first, int digits) {
        std::uint32_t value = 0;
        for (int i = 0; i < digits; ++i) {
            value = value * 16 + digit(text[first + i]);
        }
        return value;
    };
    if (text[0] != '{' || text[9] != '-' || text[14] != '-' || text[19] != '-' || text[24] != '-' ||
        text[37] != '}') {
        throw "not a GUID";
    }
    GUID guid{number(1, 8),
              static_cast<std::uint16_t>(number(10, 4)),
              static_cast<std::uint16_t>(number(15, 4)),
              {}};
    for (int i = 0; i < 8; ++i) {
        guid.Data4[i] = static_cast<std::uint8_t>(number(i < 2 ? 20 + 2 * i : 21 + 2 * i, 2));
    }
    return guid;
}

/// A string: the pointer addresses the first code unit; a 32-bit byte length stands directly before
/// it and a zero unit behind the last. Length counts may include U+0000. Allocate with
/// `SysAlloc...`.
using BSTR = char16_t*;

using VARIANT_BOOL = std::int16_t;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;  ///< 0xFFFF
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

using VARTYPE = std::uint16_t;
enum : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,  ///< fills everything behind `vt`: scale, sign, upper 32 bits, lower 64 bits
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_VOID = 24,
    VT_HRESULT = 25,
    VT_PTR = 26,
    VT_SAFEARRAY = 27,
    VT_USERDEFINED = 29,
    VT_RECORD = 36,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
    VT_TYPEMASK = 0x0FFF,
};

/// One dimension of an array: how many elements, and the index of the first.
struct SAFEARRAYBOUND {
    std::uint32_t cElements;
    std::int32_t lLbound;
};

enum : std::uint16_t {
    FADF_HAVEVARTYPE = 0x0080,  ///< the element type stands in the 4 bytes before the descriptor
    FADF_BSTR = 0x0100,
    FADF_UNKNOWN = 0x0200,
    FADF_DISPATCH = 0x0400,
    FADF_VARIANT = 0x0800,
};

/// An array with bounds. 24 bytes and 8 for each dimension; the dimensions are stored last first.
struct SAFEARRAY {
    std::uint16_t cDims;
    std::uint16_t fFeatures;
    std::uint32_t cbElements;  ///< bytes of one element
    std::uint32_t cLocks;
    void* pvData;
    SAFEARRAYBOUND rgsabound[1];
};
static_assert(offsetof(SAFEARRAY, fFeatures) == 2 && offsetof(SAFEARRAY, cbElements) == 4);
static_assert(offsetof(SAFEARRAY, cLocks) == 8 && offsetof(SAFEARRAY, pvData) == 16);
static_assert(sizeof(SAFEARRAYBOUND) == 8 && offsetof(SAFEARRAY, rgsabound) == 24);

/// A value that carries its type. `vt` says which member of the union holds.
struct VARIANT {
    /// A record and the description of its type.
    struct Record {
        void* pvRecord;
        void* pRecInfo;
    };

    VARTYPE vt;
    std::uint16_t wReserved1;
    std::uint16_t wReserved2;
    std::uint16_t wReserved3;
    union {
        std::int64_t llVal;
        std::uint64_t ullVal;
        std::int32_t lVal;
        std::uint32_t ulVal;
        std::int16_t iVal;
        std::uint16_t uiVal;
        std::int8_t cVal;
        std::uint8_t bVal;
        float fltVal;
        double dblVal;       ///< VT_R8, and VT_DATE: days since 30 December 1899
        std::int64_t cyVal;  ///< VT_CY: ten-thousandths
        VARIANT_BOOL boolVal;
        HRESULT scode;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        void* byref;
        std::int32_t* plVal;
        std::int16_t* piVal;
        double* pdblVal;
        VARIANT_BOOL* pboolVal;
        BSTR* pbstrVal;
        IUnknown** ppunkVal;
        IDispatch** ppdispVal;
        SAFEARRAY** pparray;
        VARIANT* pvarVal;
        Record record;
    };
};
static_assert(sizeof(VARIANT) == 24 && offsetof(VARIANT, llVal) == 8);

/// A rectangle in the units of a device context.
struct tagRECT {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};
static_assert(sizeof(tagRECT) == 16 && offsetof(tagRECT, bottom) == 12);

}  // namespace generalutilities
