#pragma once

#include <cstdint>

/// Status values, as every method of a component and every driver function returns them.
///
/// A negative value is a failure. 0 is success and 1 success with a negative answer. Values with
/// the facility FACILITY_ITF (0x8004xxxx) are the library's own.
namespace generalutilities {

using HRESULT = std::int32_t;

/// Turns the customary unsigned spelling of a status into its value.
constexpr HRESULT MakeStatus(std::uint32_t value) {
    return static_cast<HRESULT>(value);
}

/// Whether a status is no failure; a negative answer (S_FALSE) is none.
constexpr bool Succeeded(HRESULT status) {
    return status >= 0;
}
/// Whether a status is a failure.
constexpr bool Failed(HRESULT status) {
    return status < 0;
}

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = MakeStatus(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = MakeStatus(0x80004002);
inline constexpr HRESULT E_POINTER = MakeStatus(0x80004003);
inline constexpr HRESULT E_FAIL = MakeStatus(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = MakeStatus(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = MakeStatus(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = MakeStatus(0x80070057);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = MakeStatus(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = MakeStatus(0x80040111);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = MakeStatus(0x80040154);
inline constexpr HRESULT CO_E_CLASSSTRING = MakeStatus(0x800401F3);
inline constexpr HRESULT CO_E_OBJNOTREG = MakeStatus(0x800401FB);
inline constexpr HRESULT CONNECT_E_NOCONNECTION = MakeStatus(0x80040200);
inline constexpr HRESULT CONNECT_E_CANNOTCONNECT = MakeStatus(0x80040202);

inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = MakeStatus(0x80020001);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = MakeStatus(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = MakeStatus(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = MakeStatus(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = MakeStatus(0x80020006);
inline constexpr HRESULT DISP_E_NONAMEDARGS = MakeStatus(0x80020007);
inline constexpr HRESULT DISP_E_BADVARTYPE = MakeStatus(0x80020008);
inline constexpr HRESULT DISP_E_EXCEPTION = MakeStatus(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = MakeStatus(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = MakeStatus(0x8002000B);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = MakeStatus(0x8002000D);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = MakeStatus(0x8002000E);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = MakeStatus(0x8002000F);
inline constexpr HRESULT TYPE_E_ELEMENTNOTFOUND = MakeStatus(0x8002802B);
inline constexpr HRESULT TYPE_E_LIBNOTREGISTERED = MakeStatus(0x8002801D);
inline constexpr HRESULT TYPE_E_CANTLOADLIBRARY = MakeStatus(0x80029C4A);

/// Failures of `ITDReader` and `ITDWriter`.
enum ITDErrorCode : HRESULT {
    itderrUnableToOpenFile = MakeStatus(0x80040001),
    itderrBadMagic = MakeStatus(0x80040002),
    itderrBadVersion = MakeStatus(0x80040003),
    itderrUnableToReadFile = MakeStatus(0x80040004),
    itderrUnableToAllocMem = MakeStatus(0x80040005),
    itderrUnableToAccessZip = MakeStatus(0x80040006),
    itderrWrongTextHeader = MakeStatus(0x80040007),
    itderrTextParsing = MakeStatus(0x80040008),
};

/// Failures of `ExtViewHelper`.
enum EVErrorCode : HRESULT {
    everrInvalidQuery = MakeStatus(0x80040020),
    everrUnableToOpenFile = MakeStatus(0x80040021),
    everrNotEnoughFieldsPresent = MakeStatus(0x80040022),
};

}  // namespace generalutilities
