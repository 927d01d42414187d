#pragma once

#include <generalutilities/interfaces/collections.h>

#include "collections/dictionary_table.h"
#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

namespace generalutilities {

/// The class behind `qlnDictionary`. A null pointer gives E_POINTER; only a value that cannot be
/// copied fails besides.
class CQLNDictionary : public Dual<IQLNDictionary, DescribeQLNDictionary> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT Add(VARIANT* Key, VARIANT* Item) noexcept override;
    HRESULT get_CompareMode(qlnCompareMethod* pVal) noexcept override;
    HRESULT put_CompareMode(qlnCompareMethod newVal) noexcept override;
    HRESULT get_Count(std::int32_t* pVal) noexcept override;
    HRESULT Exists(VARIANT* Key, VARIANT_BOOL* pVal) noexcept override;
    HRESULT get_Item(VARIANT* Key, VARIANT* pVal) noexcept override;
    HRESULT put_Item(VARIANT* Key, VARIANT* newVal) noexcept override;
    HRESULT Items(VARIANT* pVal) noexcept override;
    HRESULT get_Key(VARIANT* Key, VARIANT* pVal) noexcept override;
    HRESULT put_Key(VARIANT* Key, VARIANT* newVal) noexcept override;
    HRESULT Keys(VARIANT* pVal) noexcept override;
    HRESULT Remove(VARIANT* Key) noexcept override;
    HRESULT RemoveAll() noexcept override;

  private:
    /// All keys or all items as an array.
    HRESULT List(Variant DictionaryEntry::*part, VARIANT* pVal) noexcept;

    DictionaryTable table;
};

}  // namespace generalutilities
