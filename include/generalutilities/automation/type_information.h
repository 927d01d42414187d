#pragma once

#include <generalutilities/automation/unknown.h>

#include <cstddef>
#include <cstdint>

/// Type information: what the library says at run time about its classes, interfaces, methods and
/// arguments. Structures and interface orders are the platform's published ones, in 64-bit layout.
///
/// Structures that `Get...` operations hand out belong to the type information; give each back with
/// the `Release...` operation of the same object.
namespace generalutilities {

using MEMBERID = DISPID;
using HREFTYPE = std::uint32_t;
inline constexpr MEMBERID MEMBERID_NIL = -1;

/// What a type is.
enum TYPEKIND : std::int32_t {
    TKIND_ENUM = 0,
    TKIND_RECORD = 1,
    TKIND_MODULE = 2,
    TKIND_INTERFACE = 3,
    TKIND_DISPATCH = 4,
    TKIND_COCLASS = 5,
    TKIND_ALIAS = 6,
    TKIND_UNION = 7,
};

enum : std::uint16_t {
    TYPEFLAG_FAPPOBJECT = 0x01,
    TYPEFLAG_FCANCREATE = 0x02,
    TYPEFLAG_FDUAL = 0x40,
    TYPEFLAG_FNONEXTENSIBLE = 0x80,
    TYPEFLAG_FOLEAUTOMATION = 0x100,
    TYPEFLAG_FDISPATCHABLE = 0x1000,
};

enum : std::int32_t { IMPLTYPEFLAG_FDEFAULT = 1, IMPLTYPEFLAG_FSOURCE = 2 };

enum : std::uint16_t {
    PARAMFLAG_NONE = 0,
    PARAMFLAG_FIN = 0x01,
    PARAMFLAG_FOUT = 0x02,
    PARAMFLAG_FRETVAL = 0x08,
    PARAMFLAG_FOPT = 0x10,
    PARAMFLAG_FHASDEFAULT = 0x20,
};

/// How a function is reached.
enum FUNCKIND : std::int32_t { FUNC_PUREVIRTUAL = 1, FUNC_DISPATCH = 4 };
/// What a function is to its caller.
enum INVOKEKIND : std::int32_t {
    INVOKE_FUNC = 1,
    INVOKE_PROPERTYGET = 2,
    INVOKE_PROPERTYPUT = 4,
    INVOKE_PROPERTYPUTREF = 8,
};
/// How a function is called: in the one way of the platform.
enum CALLCONV : std::int32_t { CC_STDCALL = 4 };
/// What a variable is.
enum VARKIND : std::int32_t { VAR_PERINSTANCE = 0, VAR_CONST = 2 };
/// The system that a library was made for.
enum SYSKIND : std::int32_t { SYS_WIN32 = 1, SYS_WIN64 = 3 };
/// What a search by name found: nothing, as the library offers no such search.
enum DESCKIND : std::int32_t { DESCKIND_NONE = 0 };

/// A type: for VT_PTR and VT_SAFEARRAY `lptdesc` says of what, for VT_USERDEFINED `hreftype` names
/// a type to be asked of `GetRefTypeInfo`.
struct TYPEDESC {
    union {
        TYPEDESC* lptdesc;
        void* lpadesc;
        HREFTYPE hreftype;
    };
    VARTYPE vt;
};

/// The declared default of an argument.
struct PARAMDESCEX {
    std::uint32_t cBytes;
    VARIANT varDefaultValue;
};
static_assert(offsetof(PARAMDESCEX, varDefaultValue) == 8);

/// How an argument travels: PARAMFLAG bits, and its default.
struct PARAMDESC {
    PARAMDESCEX* pparamdescex;  ///< the declared default; null without PARAMFLAG_FHASDEFAULT
    std::uint16_t wParamFlags;
};

/// The type of an argument, a result or a field.
struct ELEMDESC {
    TYPEDESC tdesc;
    PARAMDESC paramdesc;
};
static_assert(sizeof(TYPEDESC) == 16 && sizeof(PARAMDESC) == 16 && sizeof(ELEMDESC) == 32);

/// A function of a type.
struct FUNCDESC {
    MEMBERID memid;
    std::int32_t* lprgscode;
    ELEMDESC* lprgelemdescParam;  ///< `cParams` arguments in declaration order
    FUNCKIND funckind;
    INVOKEKIND invkind;
    CALLCONV callconv;
    std::int16_t cParams;
    std::int16_t cParamsOpt;
    std::int16_t oVft;  ///< byte offset in the table of operations
    std::int16_t cScodes;
    ELEMDESC elemdescFunc;  ///< the result: VT_HRESULT, VT_VOID for an event
    std::uint16_t wFuncFlags;
};
static_assert(sizeof(FUNCDESC) == 88 && offsetof(FUNCDESC, funckind) == 24);
static_assert(offsetof(FUNCDESC, oVft) == 40 && offsetof(FUNCDESC, elemdescFunc) == 48);

/// A field of a record, or a constant of an enumeration.
struct VARDESC {
    MEMBERID memid;
    char16_t* lpstrSchema;
    union {
        std::uint32_t oInst;  ///< byte offset in the record
        VARIANT* lpvarValue;  ///< the constant
    };
    ELEMDESC elemdescVar;
    std::uint16_t wVarFlags;
    VARKIND varkind;
};
static_assert(sizeof(VARDESC) == 64 && offsetof(VARDESC, elemdescVar) == 24);

/// The attributes of a type.
struct TYPEATTR {
    GUID guid;
    LCID lcid;
    std::uint32_t dwReserved;
    MEMBERID memidConstructor;
    MEMBERID memidDestructor;
    char16_t* lpstrSchema;
    std::uint32_t cbSizeInstance;
    TYPEKIND typekind;
    std::uint16_t cFuncs;
    std::uint16_t cVars;
    std::uint16_t cImplTypes;
    std::uint16_t cbSizeVft;
    std::uint16_t cbAlignment;
    std::uint16_t wTypeFlags;
    std::uint16_t wMajorVerNum;
    std::uint16_t wMinorVerNum;
    TYPEDESC tdescAlias;
    struct {
        std::uintptr_t dwReserved;
        std::uint16_t wIDLFlags;
    } idldescType;
};
static_assert(sizeof(TYPEATTR) == 96 && offsetof(TYPEATTR, typekind) == 44);
static_assert(offsetof(TYPEATTR, tdescAlias) == 64);

/// The attributes of a type library.
struct TLIBATTR {
    GUID guid;
    LCID lcid;
    SYSKIND syskind;
    std::uint16_t wMajorVerNum;
    std::uint16_t wMinorVerNum;
    std::uint16_t wLibFlags;
};
static_assert(sizeof(TLIBATTR) == 32 && offsetof(TLIBATTR, wMajorVerNum) == 24);

struct ITypeLib;
struct ITypeComp;

/// One type: its members with their names, arguments and words. TYPE_E_ELEMENTNOTFOUND for a member
/// or an index that it does not have.
struct ITypeInfo : IUnknown {
    virtual HRESULT GetTypeAttr(TYPEATTR** attributes) noexcept = 0;
    virtual HRESULT GetTypeComp(ITypeComp** comp) noexcept = 0;
    virtual HRESULT GetFuncDesc(std::uint32_t index, FUNCDESC** function) noexcept = 0;
    virtual HRESULT GetVarDesc(std::uint32_t index, VARDESC** variable) noexcept = 0;
    /// The member's name, then the names of its arguments; the strings belong to the caller.
    virtual HRESULT GetNames(MEMBERID member, BSTR* names, std::uint32_t room,
                             std::uint32_t* count) noexcept = 0;
    virtual HRESULT GetRefTypeOfImplType(std::uint32_t index, HREFTYPE* type) noexcept = 0;
    virtual HRESULT GetImplTypeFlags(std::uint32_t index, std::int32_t* flags) noexcept = 0;
    virtual HRESULT GetIDsOfNames(char16_t** names, std::uint32_t count,
                                  MEMBERID* ids) noexcept = 0;
    virtual HRESULT Invoke(void* instance, MEMBERID member, std::uint16_t flags,
                           DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                           std::uint32_t* badArgument) noexcept = 0;
    virtual HRESULT GetDocumentation(MEMBERID member, BSTR* name, BSTR* help,
                                     std::uint32_t* helpContext, BSTR* helpFile) noexcept = 0;
    virtual HRESULT GetDllEntry(MEMBERID member, INVOKEKIND kind, BSTR* library, BSTR* name,
                                std::uint16_t* ordinal) noexcept = 0;
    virtual HRESULT GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) noexcept = 0;
    virtual HRESULT AddressOfMember(MEMBERID member, INVOKEKIND kind, void** address) noexcept = 0;
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept = 0;
    virtual HRESULT GetMops(MEMBERID member, BSTR* mops) noexcept = 0;
    virtual HRESULT GetContainingTypeLib(ITypeLib** library, std::uint32_t* index) noexcept = 0;
    virtual void ReleaseTypeAttr(TYPEATTR* attributes) noexcept = 0;
    virtual void ReleaseFuncDesc(FUNCDESC* function) noexcept = 0;
    virtual void ReleaseVarDesc(VARDESC* variable) noexcept = 0;
};
inline constexpr IID IID_ITypeInfo = MakeGuid("{00020401-0000-0000-C000-000000000046}");

/// A type library: its types by index, identifier and name. TYPE_E_ELEMENTNOTFOUND for none.
struct ITypeLib : IUnknown {
    virtual std::uint32_t GetTypeInfoCount() noexcept = 0;
    virtual HRESULT GetTypeInfo(std::uint32_t index, ITypeInfo** info) noexcept = 0;
    virtual HRESULT GetTypeInfoType(std::uint32_t index, TYPEKIND* kind) noexcept = 0;
    virtual HRESULT GetTypeInfoOfGuid(REFGUID guid, ITypeInfo** info) noexcept = 0;
    virtual HRESULT GetLibAttr(TLIBATTR** attributes) noexcept = 0;
    virtual HRESULT GetTypeComp(ITypeComp** comp) noexcept = 0;
    /// Of the library itself for the index -1.
    virtual HRESULT GetDocumentation(std::int32_t index, BSTR* name, BSTR* help,
                                     std::uint32_t* helpContext, BSTR* helpFile) noexcept = 0;
    virtual HRESULT IsName(char16_t* name, std::uint32_t hash, std::int32_t* found) noexcept = 0;
    virtual HRESULT FindName(char16_t* name, std::uint32_t hash, ITypeInfo** infos, MEMBERID* ids,
                             std::uint16_t* count) noexcept = 0;
    virtual void ReleaseTLibAttr(TLIBATTR* attributes) noexcept = 0;
};
inline constexpr IID IID_ITypeLib = MakeGuid("{00020402-0000-0000-C000-000000000046}");

}  // namespace generalutilities
