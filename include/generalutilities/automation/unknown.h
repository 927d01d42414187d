#pragma once

#include <generalutilities/automation/values.h>

#include <cstdint>

/// The published interfaces that every component stands on.
///
/// An interface pointer points to an object whose first word points to a table of functions in the
/// order of the declarations below. No table holds anything else: no virtual destructor, and every
/// operation is `noexcept`.
namespace generalutilities {

struct ITypeInfo;

/// What every object answers: its other interfaces, and the count of references to it. The object
/// ends with its last reference.
struct IUnknown {
    /// Success puts a new reference into `object`, failure a null pointer.
    virtual HRESULT QueryInterface(REFIID iid, void** object) noexcept = 0;
    virtual std::uint32_t AddRef() noexcept = 0;
    virtual std::uint32_t Release() noexcept = 0;
};
inline constexpr IID IID_IUnknown = MakeGuid("{00000000-0000-0000-C000-000000000046}");

using DISPID = std::int32_t;
using LCID = std::uint32_t;
inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;
inline constexpr DISPID DISPID_NEWENUM = -4;

/// How `Invoke` is meant; flags may be combined.
enum : std::uint16_t {
    DISPATCH_METHOD = 1,
    DISPATCH_PROPERTYGET = 2,
    DISPATCH_PROPERTYPUT = 4,
    DISPATCH_PROPERTYPUTREF = 8,
};

/// Arguments of `Invoke`: the last argument stands first; the first `cNamedArgs` of them are named.
struct DISPPARAMS {
    VARIANT* rgvarg;
    DISPID* rgdispidNamedArgs;
    std::uint32_t cArgs;
    std::uint32_t cNamedArgs;
};
static_assert(sizeof(DISPPARAMS) == 24 && offsetof(DISPPARAMS, cNamedArgs) == 20);

/// What a failing method reported; the strings belong to the caller.
struct EXCEPINFO {
    std::uint16_t wCode;
    std::uint16_t wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    std::uint32_t dwHelpContext;
    void* pvReserved;
    HRESULT (*pfnDeferredFillIn)(EXCEPINFO*);
    HRESULT scode;
};
static_assert(sizeof(EXCEPINFO) == 64 && offsetof(EXCEPINFO, bstrSource) == 8);
static_assert(offsetof(EXCEPINFO, dwHelpContext) == 32 && offsetof(EXCEPINFO, scode) == 56);

/// Late binding: members by name, and calls with arguments that carry their types.
struct IDispatch : IUnknown {
    virtual HRESULT GetTypeInfoCount(std::uint32_t* count) noexcept = 0;
    virtual HRESULT GetTypeInfo(std::uint32_t index, LCID lcid, ITypeInfo** info) noexcept = 0;
    /// The first name is a member's, the others are names of its arguments, in any case.
    virtual HRESULT GetIDsOfNames(REFIID reserved, char16_t** names, std::uint32_t count, LCID lcid,
                                  DISPID* ids) noexcept = 0;
    virtual HRESULT Invoke(DISPID member, REFIID reserved, LCID lcid, std::uint16_t flags,
                           DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                           std::uint32_t* badArgument) noexcept = 0;
};
inline constexpr IID IID_IDispatch = MakeGuid("{00020400-0000-0000-C000-000000000046}");

/// Makes the objects of a class. `outer` is the object that is to hold the new one, or null.
struct IClassFactory : IUnknown {
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept = 0;
    virtual HRESULT LockServer(std::int32_t lock) noexcept = 0;
};
inline constexpr IID IID_IClassFactory = MakeGuid("{00000001-0000-0000-C000-000000000046}");

/// Tells whether the failures of an interface leave an error object: S_OK or S_FALSE.
struct ISupportErrorInfo : IUnknown {
    virtual HRESULT InterfaceSupportsErrorInfo(REFIID iid) noexcept = 0;
};
inline constexpr IID IID_ISupportErrorInfo = MakeGuid("{DF0B3D60-548F-101B-8E65-08002B2BD119}");

/// The words about a failure. The strings belong to the caller.
struct IErrorInfo : IUnknown {
    virtual HRESULT GetGUID(GUID* guid) noexcept = 0;
    virtual HRESULT GetSource(BSTR* source) noexcept = 0;
    virtual HRESULT GetDescription(BSTR* description) noexcept = 0;
    virtual HRESULT GetHelpFile(BSTR* helpFile) noexcept = 0;
    virtual HRESULT GetHelpContext(std::uint32_t* helpContext) noexcept = 0;
};
inline constexpr IID IID_IErrorInfo = MakeGuid("{1CF2B120-547D-101B-8E65-08002B2BD119}");

/// Fills in an error object; the texts are copied.
struct ICreateErrorInfo : IUnknown {
    virtual HRESULT SetGUID(REFGUID guid) noexcept = 0;
    virtual HRESULT SetSource(char16_t* source) noexcept = 0;
    virtual HRESULT SetDescription(char16_t* description) noexcept = 0;
    virtual HRESULT SetHelpFile(char16_t* helpFile) noexcept = 0;
    virtual HRESULT SetHelpContext(std::uint32_t helpContext) noexcept = 0;
};
inline constexpr IID IID_ICreateErrorInfo = MakeGuid("{22F03340-547D-101B-8E65-08002B2BD119}");

/// Walks a collection. `Next` gives S_FALSE when there are fewer values than were asked for; the
/// values belong to the caller.
struct IEnumVARIANT : IUnknown {
    virtual HRESULT Next(std::uint32_t count, VARIANT* values, std::uint32_t* fetched) noexcept = 0;
    virtual HRESULT Skip(std::uint32_t count) noexcept = 0;
    virtual HRESULT Reset() noexcept = 0;
    virtual HRESULT Clone(IEnumVARIANT** clone) noexcept = 0;
};
inline constexpr IID IID_IEnumVARIANT = MakeGuid("{00020404-0000-0000-C000-000000000046}");

struct IConnectionPoint;
struct IConnectionPointContainer;

/// A connected sink, with the number by which it can be disconnected.
struct CONNECTDATA {
    IUnknown* pUnk;
    std::uint32_t dwCookie;
};
static_assert(sizeof(CONNECTDATA) == 16);

/// Walks the sinks of a connection point.
struct IEnumConnections : IUnknown {
    virtual HRESULT Next(std::uint32_t count, CONNECTDATA* data,
                         std::uint32_t* fetched) noexcept = 0;
    virtual HRESULT Skip(std::uint32_t count) noexcept = 0;
    virtual HRESULT Reset() noexcept = 0;
    virtual HRESULT Clone(IEnumConnections** clone) noexcept = 0;
};
inline constexpr IID IID_IEnumConnections = MakeGuid("{B196B287-BAB4-101A-B69C-00AA00341D07}");

/// Where sinks of one event interface connect. `Advise` gives a number that is never 0, and
/// CONNECT_E_CANNOTCONNECT for a sink without the interface; `Unadvise` takes it back.
struct IConnectionPoint : IUnknown {
    virtual HRESULT GetConnectionInterface(IID* iid) noexcept = 0;
    virtual HRESULT GetConnectionPointContainer(IConnectionPointContainer** container) noexcept = 0;
    virtual HRESULT Advise(IUnknown* sink, std::uint32_t* cookie) noexcept = 0;
    virtual HRESULT Unadvise(std::uint32_t cookie) noexcept = 0;
    virtual HRESULT EnumConnections(IEnumConnections** connections) noexcept = 0;
};
inline constexpr IID IID_IConnectionPoint = MakeGuid("{B196B286-BAB4-101A-B69C-00AA00341D07}");

/// Walks the connection points of an object.
struct IEnumConnectionPoints : IUnknown {
    virtual HRESULT Next(std::uint32_t count, IConnectionPoint** points,
                         std::uint32_t* fetched) noexcept = 0;
    virtual HRESULT Skip(std::uint32_t count) noexcept = 0;
    virtual HRESULT Reset() noexcept = 0;
    virtual HRESULT Clone(IEnumConnectionPoints** clone) noexcept = 0;
};
inline constexpr IID IID_IEnumConnectionPoints = MakeGuid("{B196B285-BAB4-101A-B69C-00AA00341D07}");

/// The event interfaces of an object. CONNECT_E_NOCONNECTION for an interface that it does not
/// fire.
struct IConnectionPointContainer : IUnknown {
    virtual HRESULT EnumConnectionPoints(IEnumConnectionPoints** points) noexcept = 0;
    virtual HRESULT FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept = 0;
};
inline constexpr IID IID_IConnectionPointContainer =
    MakeGuid("{B196B284-BAB4-101A-B69C-00AA00341D07}");

}  // namespace generalutilities
