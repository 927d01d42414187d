#pragma once

#include <generalutilities/automation/type_information.h>
#include <generalutilities/automation/unknown.h>
#include <generalutilities/automation/values.h>

#include <cstdint>

#define GENERALUTILITIES_API __attribute__((visibility("default")))

/// The exported functions of libGeneralUtilities.so: the four of the library, the automation
/// runtime, the component runtime, handles, and the door to a project. C linkage, nothing throws.
namespace generalutilities {
extern "C" {

// --- the library
// -----------------------------------------------------------------------------------

/// 0 when no object, server lock or class factory of the library is held any more, else 1.
GENERALUTILITIES_API HRESULT DllCanUnloadNow() noexcept;
/// The class factory of a class of the library, as `iid`.
GENERALUTILITIES_API HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept;
/// Enters all classes and the type library in the registry.
GENERALUTILITIES_API HRESULT DllRegisterServer() noexcept;
/// Removes them again, and nothing else.
GENERALUTILITIES_API HRESULT DllUnregisterServer() noexcept;

// --- strings
// ---------------------------------------------------------------------------------------
// Allocating functions give null when memory is out; lengths are code units unless they say bytes.

/// A copy up to the first zero unit; null for null.
GENERALUTILITIES_API BSTR SysAllocString(const char16_t* text) noexcept;
/// A string of `length` units, copied from `text` unless that is null.
GENERALUTILITIES_API BSTR SysAllocStringLen(const char16_t* text, std::uint32_t length) noexcept;
/// A string of `length` bytes, copied from `bytes` unless that is null.
GENERALUTILITIES_API BSTR SysAllocStringByteLen(const char* bytes, std::uint32_t length) noexcept;
/// Replaces `*string` by a copy of `length` units at `text`, which may lie inside `*string`; with a
/// null `text` the string keeps its content and changes its length. 1 on success, 0 when out of
/// memory.
GENERALUTILITIES_API std::int32_t SysReAllocStringLen(BSTR* string, const char16_t* text,
                                                      std::uint32_t length) noexcept;
/// Ends a string; null is no error.
GENERALUTILITIES_API void SysFreeString(BSTR string) noexcept;
/// The length in code units; 0 for null.
GENERALUTILITIES_API std::uint32_t SysStringLen(BSTR string) noexcept;
/// The length in bytes; 0 for null.
GENERALUTILITIES_API std::uint32_t SysStringByteLen(BSTR string) noexcept;

// --- variants
// --------------------------------------------------------------------------------------

/// Makes memory an empty value, without looking at what it held.
GENERALUTILITIES_API void VariantInit(VARIANT* variant) noexcept;
/// Ends what the value owns, and makes it empty.
GENERALUTILITIES_API HRESULT VariantClear(VARIANT* variant) noexcept;
/// Makes `destination`, whose value ends, a copy of its own. E_OUTOFMEMORY.
GENERALUTILITIES_API HRESULT VariantCopy(VARIANT* destination, const VARIANT* source) noexcept;
/// Like `VariantCopy`, but follows a by-reference source.
GENERALUTILITIES_API HRESULT VariantCopyInd(VARIANT* destination, const VARIANT* source) noexcept;
/// Converts without regard to locale; numbers in texts have a point and no grouping. `destination`
/// and `source` may be the same. DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW leave `destination` as it
/// was.
GENERALUTILITIES_API HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source,
                                               std::uint16_t flags, VARTYPE type) noexcept;

// --- arrays
// ----------------------------------------------------------------------------------------
// Dimensions count from 1. Elements of VT_BSTR, VT_VARIANT, VT_UNKNOWN and VT_DISPATCH belong to
// the array.

/// An array of empty elements, one `bounds` for each dimension, the first one first. Null when
/// memory is out or an argument is wrong.
GENERALUTILITIES_API SAFEARRAY* SafeArrayCreate(VARTYPE type, std::uint32_t dimensions,
                                                SAFEARRAYBOUND* bounds) noexcept;
/// The same with one dimension.
GENERALUTILITIES_API SAFEARRAY* SafeArrayCreateVector(VARTYPE type, std::int32_t lowerBound,
                                                      std::uint32_t count) noexcept;
/// Ends an array with its elements; null is no error. DISP_E_ARRAYISLOCKED.
GENERALUTILITIES_API HRESULT SafeArrayDestroy(SAFEARRAY* array) noexcept;
/// The number of dimensions; 0 for null.
GENERALUTILITIES_API std::uint32_t SafeArrayGetDim(SAFEARRAY* array) noexcept;
/// The index of the first element of a dimension. DISP_E_BADINDEX for none.
GENERALUTILITIES_API HRESULT SafeArrayGetLBound(SAFEARRAY* array, std::uint32_t dimension,
                                                std::int32_t* bound) noexcept;
/// The index of the last element of a dimension: one below the first for no elements.
GENERALUTILITIES_API HRESULT SafeArrayGetUBound(SAFEARRAY* array, std::uint32_t dimension,
                                                std::int32_t* bound) noexcept;
/// The type of the elements.
GENERALUTILITIES_API HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) noexcept;
/// A copy of the element, owned by the caller.
GENERALUTILITIES_API HRESULT SafeArrayGetElement(SAFEARRAY* array, std::int32_t* indices,
                                                 void* element) noexcept;
/// Stores a copy. For VT_BSTR, VT_UNKNOWN and VT_DISPATCH `element` is the pointer itself.
GENERALUTILITIES_API HRESULT SafeArrayPutElement(SAFEARRAY* array, std::int32_t* indices,
                                                 void* element) noexcept;
/// The elements, in memory order, locked until `SafeArrayUnaccessData`. They stay the array's.
GENERALUTILITIES_API HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) noexcept;
/// Takes back one lock of `SafeArrayAccessData`.
GENERALUTILITIES_API HRESULT SafeArrayUnaccessData(SAFEARRAY* array) noexcept;
/// A locked array cannot be destroyed. Locks count.
GENERALUTILITIES_API HRESULT SafeArrayLock(SAFEARRAY* array) noexcept;
/// Takes back one lock.
GENERALUTILITIES_API HRESULT SafeArrayUnlock(SAFEARRAY* array) noexcept;
/// A copy with copies of all elements, owned by the caller.
GENERALUTILITIES_API HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy) noexcept;

// --- component runtime
// -----------------------------------------------------------------------------

inline constexpr std::uint32_t CLSCTX_INPROC_SERVER = 1;
inline constexpr std::uint32_t CLSCTX_ALL = 23;

/// Creates an object: through a class object registered in this process, else the library's own
/// class, else the module that the registry names for the class.
GENERALUTILITIES_API HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer,
                                              std::uint32_t context, REFIID iid,
                                              void** object) noexcept;
/// The class object itself, found in the same order.
GENERALUTILITIES_API HRESULT CoGetClassObject(REFCLSID clsid, std::uint32_t context, void* reserved,
                                              REFIID iid, void** object) noexcept;
/// Puts a class factory of the host in the place of a class for this process, until it is revoked.
/// The latest registration of a class wins.
GENERALUTILITIES_API HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* factory,
                                                   std::uint32_t context, std::uint32_t flags,
                                                   std::uint32_t* cookie) noexcept;
/// Ends a registration. CO_E_OBJNOTREG for a cookie that stands for none.
GENERALUTILITIES_API HRESULT CoRevokeClassObject(std::uint32_t cookie) noexcept;
/// Memory that another module may free; null when there is none.
GENERALUTILITIES_API void* CoTaskMemAlloc(std::size_t size) noexcept;
/// Frees it; null is no error.
GENERALUTILITIES_API void CoTaskMemFree(void* memory) noexcept;
/// Looks a ProgID up in the registry; CO_E_CLASSSTRING where it is not registered. The built-in
/// "Scripting.Dictionary" (automation/dictionary.h) is known without any registration.
GENERALUTILITIES_API HRESULT CLSIDFromProgID(const char16_t* progId, CLSID* clsid) noexcept;
/// The versioned ProgID, to be freed with `CoTaskMemFree`; the library's own classes are known
/// without any registration.
GENERALUTILITIES_API HRESULT ProgIDFromCLSID(REFCLSID clsid, char16_t** progId) noexcept;
/// A new error object, to be filled and handed to `SetErrorInfo`.
GENERALUTILITIES_API HRESULT CreateErrorInfo(ICreateErrorInfo** error) noexcept;
/// Sets the error object of the calling thread; null clears it.
GENERALUTILITIES_API HRESULT SetErrorInfo(std::uint32_t reserved, IErrorInfo* error) noexcept;
/// Takes the error object of the calling thread out; S_FALSE and null when there is none.
GENERALUTILITIES_API HRESULT GetErrorInfo(std::uint32_t reserved, IErrorInfo** error) noexcept;
/// The type library of the module at `path`; this library's own module alone has one.
GENERALUTILITIES_API HRESULT LoadTypeLib(const char16_t* path, ITypeLib** library) noexcept;
/// The type library that the registry names; TYPE_E_LIBNOTREGISTERED for none.
GENERALUTILITIES_API HRESULT LoadRegTypeLib(REFGUID library, std::uint16_t major,
                                            std::uint16_t minor, LCID lcid,
                                            ITypeLib** typeLibrary) noexcept;

// --- handles
// ---------------------------------------------------------------------------------------

/// A positive number that stands for an address where an interface takes a `long`; 0 for null or
/// when memory is out. The table is process-wide; any thread may use it.
GENERALUTILITIES_API std::int32_t HandleFromPointer(void* pointer) noexcept;
/// The address, or null for a number that stands for none.
GENERALUTILITIES_API void* PointerFromHandle(std::int32_t handle) noexcept;
/// Ends a number; the address itself is not touched.
GENERALUTILITIES_API void ReleaseHandle(std::int32_t handle) noexcept;

// --- projects
// --------------------------------------------------------------------------------------

/// Opens the project at `location` (a path names an SQLite file) and gives the object that
/// `ExportExternalView` and `ImportExternalView` take. A failure leaves an error object that names
/// the file and the reason.
GENERALUTILITIES_API HRESULT OpenProjectDatabase(const char16_t* location,
                                                 IUnknown** project) noexcept;

}  // extern "C"
}  // namespace generalutilities
