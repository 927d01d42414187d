#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// An ordered set of 32-bit integers. `Item` counts from 1 in ascending order.
struct ILongSet : IDispatch {
    virtual HRESULT Add(std::int32_t Val) noexcept = 0;
    virtual HRESULT Remove(std::int32_t Val) noexcept = 0;
    virtual HRESULT get_Count(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT get_Item(std::int32_t n, std::int32_t* pVal) noexcept = 0;
    virtual HRESULT get__NewEnum(IUnknown** pVal) noexcept = 0;
    virtual HRESULT IntersectWith(ILongSet* OtherSet, ILongSet** ppVal) noexcept = 0;
    virtual HRESULT _GetSet(void** pVal) noexcept = 0;
};
inline constexpr IID IID_ILongSet = MakeGuid("{9AD24656-D7A1-4DE4-AC11-0596465945EF}");

/// A stack of 32-bit integers that can be searched.
struct ILongStack : IDispatch {
    virtual HRESULT Push(std::int32_t lValue) noexcept = 0;
    virtual HRESULT Pop(std::int32_t* plValue) noexcept = 0;
    virtual HRESULT Peek(std::int32_t* plValue) noexcept = 0;
    virtual HRESULT Contains(std::int32_t lValue, VARIANT_BOOL* pbExists) noexcept = 0;
};
inline constexpr IID IID_ILongStack = MakeGuid("{4D40AB33-E978-42C6-B344-D86029FEE512}");

enum qlnCompareMethod : std::int32_t {
    dctmBinaryCompare = 0,
    dctmTextCompare = 1,
    dctmDatabaseCompare = 2,
};

/// An associative array: adding an existing key overwrites, reading a missing key creates it.
struct IQLNDictionary : IDispatch {
    virtual HRESULT Add(VARIANT* Key, VARIANT* Item) noexcept = 0;
    virtual HRESULT get_CompareMode(qlnCompareMethod* pVal) noexcept = 0;
    virtual HRESULT put_CompareMode(qlnCompareMethod newVal) noexcept = 0;
    virtual HRESULT get_Count(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT Exists(VARIANT* Key, VARIANT_BOOL* pVal) noexcept = 0;
    virtual HRESULT get_Item(VARIANT* Key, VARIANT* pVal) noexcept = 0;
    virtual HRESULT put_Item(VARIANT* Key, VARIANT* newVal) noexcept = 0;
    virtual HRESULT Items(VARIANT* pVal) noexcept = 0;
    virtual HRESULT get_Key(VARIANT* Key, VARIANT* pVal) noexcept = 0;
    virtual HRESULT put_Key(VARIANT* Key, VARIANT* newVal) noexcept = 0;
    virtual HRESULT Keys(VARIANT* pVal) noexcept = 0;
    virtual HRESULT Remove(VARIANT* Key) noexcept = 0;
    virtual HRESULT RemoveAll() noexcept = 0;
};
inline constexpr IID IID_IQLNDictionary = MakeGuid("{CD22369D-7807-418B-8F5B-7128769DF3A8}");

/// Sorts the caller's arrays in place with the caller's comparison function, which is a handle of
/// `HandleFromPointer` for an `int32_t (*)(const void*, const void*)`.
struct IQLNSort : IDispatch {
    virtual HRESULT Sort(void* pArray, std::int32_t lEleSize, std::int32_t lEleCount,
                         std::int32_t pCompFunc) noexcept = 0;
    virtual HRESULT StringSort(SAFEARRAY** pArray, std::int32_t pCompFunc) noexcept = 0;
};
inline constexpr IID IID_IQLNSort = MakeGuid("{BDEAC078-8596-4FEF-AEE5-8BD06B0DE4FC}");

}  // namespace generalutilities
