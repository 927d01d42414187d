#pragma once

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/pointers.h>

#include "frame/dispatch.h"

#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace generalutilities {

const InterfaceDescription& DescribeDictionary();

/// The small dictionary for clients that have none of their own. Entries keep the order in which
/// they were added. Keys are texts, numbers (the same number is the same key, whatever its type),
/// objects and the values without content; an array is no key. Outside the library's type library.
class CDictionary : public Dual<IDictionary, DescribeDictionary> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }
    HRESULT GetTypeInfoCount(std::uint32_t* count) noexcept override;
    HRESULT GetTypeInfo(std::uint32_t index, LCID lcid, ITypeInfo** info) noexcept override;

    HRESULT putref_Item(VARIANT* Key, VARIANT* Item) noexcept override;
    HRESULT put_Item(VARIANT* Key, VARIANT* Item) noexcept override;
    HRESULT get_Item(VARIANT* Key, VARIANT* Item) noexcept override;
    HRESULT Add(VARIANT* Key, VARIANT* Item) noexcept override;
    HRESULT get_Count(std::int32_t* Count) noexcept override;
    HRESULT Exists(VARIANT* Key, VARIANT_BOOL* Found) noexcept override;
    HRESULT Items(VARIANT* Items) noexcept override;
    HRESULT put_Key(VARIANT* Key, VARIANT* NewKey) noexcept override;
    HRESULT Keys(VARIANT* Keys) noexcept override;
    HRESULT Remove(VARIANT* Key) noexcept override;
    HRESULT RemoveAll() noexcept override;
    HRESULT put_CompareMode(std::int32_t Method) noexcept override;
    HRESULT get_CompareMode(std::int32_t* Method) noexcept override;
    HRESULT get__NewEnum(IUnknown** Enumerator) noexcept override;
    HRESULT get_HashVal(VARIANT* Key, VARIANT* Hash) noexcept override;

  private:
    struct Entry {
        std::u16string identity;  ///< equal for equal keys
        Variant key;
        Variant item;
    };
    using Entries = std::list<Entry>;

    template <class Use>
    HRESULT ForKey(const VARIANT* key, const void* argument, Use use) noexcept;
    void Append(std::u16string& identity, Variant& key, Variant& item);
    HRESULT Set(VARIANT* key, VARIANT* item, bool mayReplace) noexcept;
    HRESULT List(Variant Entry::*part, VARIANT* list) const;

    Entries entries;
    std::unordered_map<std::u16string_view, Entries::iterator> byIdentity;
    std::int32_t compareMethod = BinaryCompare;
};

}  // namespace generalutilities
