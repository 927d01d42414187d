#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// An ordered set of 32-bit integers. Created as `GeneralUtilities.LongSet.1`; may be aggregated.
/// A null result pointer gives E_POINTER, but E_INVALIDARG from `_GetSet`.
struct ILongSet : IDispatch {
    /// A value that is there already changes nothing.
    virtual HRESULT Add(std::int32_t Val) noexcept = 0;
    /// A value that is not there is no error.
    virtual HRESULT Remove(std::int32_t Val) noexcept = 0;
    virtual HRESULT get_Count(std::int32_t* pVal) noexcept = 0;
    /// The n-th smallest value, from 1; E_INVALIDARG below 1, E_FAIL above the count.
    virtual HRESULT get_Item(std::int32_t n, std::int32_t* pVal) noexcept = 0;
    /// An `IEnumVARIANT` in ascending order over the live set: values that are added behind its
    /// position come up.
    virtual HRESULT get__NewEnum(IUnknown** pVal) noexcept = 0;
    /// A new set with the values of both. E_INVALIDARG for null and for a set of another
    /// implementation.
    virtual HRESULT IntersectWith(ILongSet* OtherSet, ILongSet** ppVal) noexcept = 0;
    /// For `IntersectWith` alone: an address that means something inside the library only.
    virtual HRESULT _GetSet(void** pVal) noexcept = 0;
};
inline constexpr IID IID_ILongSet = MakeGuid("{9AD24656-D7A1-4DE4-AC11-0596465945EF}");

/// A stack of 32-bit integers that can be searched. Created as `GeneralUtilities.LongStack.1`.
struct ILongStack : IDispatch {
    virtual HRESULT Push(std::int32_t lValue) noexcept = 0;
    /// The value on top, taken off or left there; E_FAIL, with nothing touched, when there is none.
    virtual HRESULT Pop(std::int32_t* plValue) noexcept = 0;
    virtual HRESULT Peek(std::int32_t* plValue) noexcept = 0;
    virtual HRESULT Contains(std::int32_t lValue, VARIANT_BOOL* pbExists) noexcept = 0;
};
inline constexpr IID IID_ILongStack = MakeGuid("{4D40AB33-E978-42C6-B344-D86029FEE512}");

/// The modes of a dictionary; `dctmBinaryCompare` is the one that acts.
enum qlnCompareMethod : std::int32_t {
    dctmBinaryCompare = 0,
    dctmTextCompare = 1,
    dctmDatabaseCompare = 2,
};

/// An associative array. Created as `GeneralUtilities.qlnDictionary.1`. Nothing that is missing or
/// there already is an error: adding an existing key overwrites, reading a missing key creates it.
/// What makes two keys the same and which order they have is told in docs/collections.md. Keys and
/// items are copied in and out; a value by reference counts as the value it refers to.
struct IQLNDictionary : IDispatch {
    virtual HRESULT Add(VARIANT* Key, VARIANT* Item) noexcept = 0;
    /// Always `dctmBinaryCompare`; setting it changes nothing.
    virtual HRESULT get_CompareMode(qlnCompareMethod* pVal) noexcept = 0;
    virtual HRESULT put_CompareMode(qlnCompareMethod newVal) noexcept = 0;
    virtual HRESULT get_Count(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT Exists(VARIANT* Key, VARIANT_BOOL* pVal) noexcept = 0;
    /// The item of a key. A missing key is added, with an empty item.
    virtual HRESULT get_Item(VARIANT* Key, VARIANT* pVal) noexcept = 0;
    virtual HRESULT put_Item(VARIANT* Key, VARIANT* newVal) noexcept = 0;
    /// All items, and all keys in the same order: an array of VARIANT with lower bound 1.
    virtual HRESULT Items(VARIANT* pVal) noexcept = 0;
    /// A copy of `Key` itself, whether it is there or not.
    virtual HRESULT get_Key(VARIANT* Key, VARIANT* pVal) noexcept = 0;
    /// Renames a key. Changes nothing when the new key is there already; adds it, with an empty
    /// item, when the old one is not.
    virtual HRESULT put_Key(VARIANT* Key, VARIANT* newVal) noexcept = 0;
    virtual HRESULT Keys(VARIANT* pVal) noexcept = 0;
    virtual HRESULT Remove(VARIANT* Key) noexcept = 0;
    virtual HRESULT RemoveAll() noexcept = 0;
};
inline constexpr IID IID_IQLNDictionary = MakeGuid("{CD22369D-7807-418B-8F5B-7128769DF3A8}");

/// Sorts the caller's arrays in place with the caller's comparison function, which is a handle of
/// `HandleFromPointer` for an `int32_t (*)(const void*, const void*)`: negative when the first
/// element sorts first (collections/sort.h). Created as `GeneralUtilities.QLNSort.1`.
///
/// Handle 0 gives S_FALSE and does nothing, an unknown one E_INVALIDARG. Running out of memory
/// leaves all elements in the array, in some order.
struct IQLNSort : IDispatch {
    /// Sorts `lEleCount` elements of `lEleSize` bytes; none for a count of 0 or less.
    virtual HRESULT Sort(void* pArray, std::int32_t lEleSize, std::int32_t lEleCount,
                         std::int32_t pCompFunc) noexcept = 0;
    /// Sorts the first dimension of an array of strings. The function gets the addresses of two
    /// BSTRs. The array is locked meanwhile.
    virtual HRESULT StringSort(SAFEARRAY** pArray, std::int32_t pCompFunc) noexcept = 0;
};
inline constexpr IID IID_IQLNSort = MakeGuid("{BDEAC078-8596-4FEF-AEE5-8BD06B0DE4FC}");

}  // namespace generalutilities
