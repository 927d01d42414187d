#pragma once

#include <generalutilities/automation/unknown.h>

/// The published dictionary of scripts, which holds the targets that `SerializeCodes` takes. A host
/// hands over its own, or the small one that CoCreateInstance(CLSID_Dictionary) gives.
namespace generalutilities {

/// How a dictionary compares texts that are keys.
enum CompareMethod : std::int32_t {
    BinaryCompare = 0,
    TextCompare = 1,  ///< case of texts does not count
};

/// Keys and items travel by address, into and out of storage of the caller's.
struct IDictionary : IDispatch {
    virtual HRESULT putref_Item(VARIANT* Key, VARIANT* Item) noexcept = 0;
    /// Replaces the item of a key, or adds both.
    virtual HRESULT put_Item(VARIANT* Key, VARIANT* Item) noexcept = 0;
    /// A key that is not there is added, with an empty item.
    virtual HRESULT get_Item(VARIANT* Key, VARIANT* Item) noexcept = 0;
    /// DictionaryKeyExists when the key is there.
    virtual HRESULT Add(VARIANT* Key, VARIANT* Item) noexcept = 0;
    virtual HRESULT get_Count(std::int32_t* Count) noexcept = 0;
    virtual HRESULT Exists(VARIANT* Key, VARIANT_BOOL* Found) noexcept = 0;
    /// All items as an array of variants, from index 0, in the order in which keys were added.
    virtual HRESULT Items(VARIANT* Items) noexcept = 0;
    /// Renames a key in its place.
    virtual HRESULT put_Key(VARIANT* Key, VARIANT* NewKey) noexcept = 0;
    virtual HRESULT Keys(VARIANT* Keys) noexcept = 0;
    /// DictionaryKeyMissing when the key is not there.
    virtual HRESULT Remove(VARIANT* Key) noexcept = 0;
    virtual HRESULT RemoveAll() noexcept = 0;
    /// A `CompareMethod`; only while the dictionary is empty.
    virtual HRESULT put_CompareMode(std::int32_t Method) noexcept = 0;
    virtual HRESULT get_CompareMode(std::int32_t* Method) noexcept = 0;
    /// An `IEnumVARIANT` over the keys as they are now.
    virtual HRESULT get__NewEnum(IUnknown** Enumerator) noexcept = 0;
    virtual HRESULT get_HashVal(VARIANT* Key, VARIANT* Hash) noexcept = 0;
};
inline constexpr IID IID_IDictionary = MakeGuid("{42C642C1-97E1-11CF-978F-00A02463E06F}");

/// The library's own dictionary; its ProgID is "Scripting.Dictionary".
inline constexpr CLSID CLSID_Dictionary = MakeGuid("{EE09B103-97E0-11CF-978F-00A02463E06F}");

inline constexpr HRESULT DictionaryInvalidCall = MakeStatus(0x800A0005);  ///< no key, or not now
inline constexpr HRESULT DictionaryKeyExists = MakeStatus(0x800A01C9);
inline constexpr HRESULT DictionaryKeyMissing = MakeStatus(0x800A802B);

}  // namespace generalutilities
