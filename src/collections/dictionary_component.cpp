#include "collections/dictionary_component.h"

#include "platform/automation/dereference.h"

namespace generalutilities {
namespace {

/// Runs `use(direct)` with the value of an argument, whether by reference or not.
template <class Use>
HRESULT WithValue(const VARIANT* argument, Use use) noexcept {
    if (argument == nullptr) {
        return E_POINTER;
    }
    VARIANT direct;
    const HRESULT status = Dereference(*argument, direct);
    return Failed(status) ? status : Guarded([&] { return use(direct); });
}

HRESULT Copy(const VARIANT& value, Variant& copy) {
    return VariantCopy(copy.InOut(), &value);
}

}  // namespace

void* CQLNDictionary::FindInterface(REFIID iid) noexcept {
    IQLNDictionary* const standard = this;
    return FindInTable(
        iid, {{IID_IUnknown, standard}, {IID_IDispatch, standard}, {IID_IQLNDictionary, standard}});
}

HRESULT CQLNDictionary::Add(VARIANT* Key, VARIANT* Item) noexcept {
    return WithValue(Key, [&](const VARIANT& key) {
        return WithValue(Item, [&](const VARIANT& value) {
            Variant item;
            if (const HRESULT status = Copy(value, item); Failed(status)) {
                return status;
            }
            if (DictionaryEntry* const entry = table.Find(key)) {
                std::swap(*entry->item.InOut(), *item.InOut());
                return S_OK;
            }
            Variant ownKey;
            const HRESULT status = Copy(key, ownKey);
            if (Succeeded(status)) {
                table.Insert(std::move(ownKey), std::move(item));
            }
            return status;
        });
    });
}

HRESULT CQLNDictionary::get_CompareMode(qlnCompareMethod* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = dctmBinaryCompare;
    return S_OK;
}

HRESULT CQLNDictionary::put_CompareMode(qlnCompareMethod) noexcept {
    return S_OK;
}

HRESULT CQLNDictionary::get_Count(std::int32_t* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = static_cast<std::int32_t>(table.Count());
    return S_OK;
}

HRESULT CQLNDictionary::Exists(VARIANT* Key, VARIANT_BOOL* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    return WithValue(Key, [&](const VARIANT& key) {
        *pVal = table.Find(key) != nullptr ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

HRESULT CQLNDictionary::get_Item(VARIANT* Key, VARIANT* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    VariantInit(pVal);
    return WithValue(Key, [&](const VARIANT& key) {
        if (const DictionaryEntry* const entry = table.Find(key)) {
            return VariantCopy(pVal, &entry->item.Get());
        }
        Variant ownKey;
        const HRESULT status = Copy(key, ownKey);
        if (Succeeded(status)) {
            table.Insert(std::move(ownKey), {});
        }
        return status;
    });
}

HRESULT CQLNDictionary::put_Item(VARIANT* Key, VARIANT* newVal) noexcept {
    return Add(Key, newVal);
}

HRESULT CQLNDictionary::Items(VARIANT* pVal) noexcept {
    return List(&DictionaryEntry::item, pVal);
}

HRESULT CQLNDictionary::get_Key(VARIANT* Key, VARIANT* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    VariantInit(pVal);
    return WithValue(Key, [&](const VARIANT& key) { return VariantCopy(pVal, &key); });
}

HRESULT CQLNDictionary::put_Key(VARIANT* Key, VARIANT* newVal) noexcept {
    return WithValue(Key, [&](const VARIANT& key) {
        return WithValue(newVal, [&](const VARIANT& newKey) {
            if (table.Find(newKey) != nullptr) {
                return S_OK;
            }
            Variant ownKey;
            if (const HRESULT status = Copy(newKey, ownKey); Failed(status)) {
                return status;
            }
            if (DictionaryEntry* const entry = table.Find(key)) {
                table.Rename(*entry, std::move(ownKey));
            } else {
                table.Insert(std::move(ownKey), {});
            }
            return S_OK;
        });
    });
}

HRESULT CQLNDictionary::Keys(VARIANT* pVal) noexcept {
    return List(&DictionaryEntry::key, pVal);
}

HRESULT CQLNDictionary::Remove(VARIANT* Key) noexcept {
    return WithValue(Key, [&](const VARIANT& key) {
        if (DictionaryEntry* const entry = table.Find(key)) {
            table.Remove(*entry);
        }
        return S_OK;
    });
}

HRESULT CQLNDictionary::RemoveAll() noexcept {
    table.RemoveAll();
    return S_OK;
}

HRESULT CQLNDictionary::List(Variant DictionaryEntry::*part, VARIANT* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    VariantInit(pVal);
    return Guarded([&] {
        Variant list;
        list.InOut()->parray =
            SafeArrayCreateVector(VT_VARIANT, 1, static_cast<std::uint32_t>(table.Count()));
        if (list.Get().parray == nullptr) {
            return E_OUTOFMEMORY;
        }
        list.InOut()->vt = VT_ARRAY | VT_VARIANT;
        auto* out = static_cast<VARIANT*>(list.Get().parray->pvData);
        const HRESULT status = table.VisitAll(
            [&](const DictionaryEntry& entry) { return VariantCopy(out++, &(entry.*part).Get()); });
        if (Succeeded(status)) {
            *pVal = list.Release();
        }
        return status;
    });
}

}  // namespace generalutilities
