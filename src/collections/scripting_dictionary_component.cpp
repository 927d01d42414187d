#include "collections/scripting_dictionary_component.h"

#include <generalutilities/text/folding.h>

#include "frame/bstr_text.h"
#include "frame/enumerator.h"

#include <charconv>
#include <cmath>

namespace generalutilities {

namespace {

template <class Number>
std::u16string Digits(Number number) {
    char text[32];
    char* const end = std::to_chars(text, std::end(text), number).ptr;
    return {std::begin(text), end};
}

/// The same text for the same number of whatever type.
std::u16string NumberIdentity(double number) {
    return std::abs(number) < 9e15 && std::trunc(number) == number
               ? Digits(static_cast<std::int64_t>(number))
               : Digits(number);
}

/// What makes two keys the same; empty for what is no key.
std::u16string IdentityOf(const VARIANT& key, bool ignoreCase) {
    switch (key.vt) {
        case VT_BSTR:
            return u"s" +
                   (ignoreCase ? ToUpper(View(key.bstrVal)) : std::u16string(View(key.bstrVal)));
        case VT_EMPTY:
            return u"e";
        case VT_NULL:
            return u"z";
        case VT_ERROR:
            return u"x" + Digits(key.scode);
        case VT_UNKNOWN:
        case VT_DISPATCH: {
            ComPtr<IUnknown> object;
            if (key.punkVal != nullptr) {
                key.punkVal->QueryInterface(IID_IUnknown, object.OutVoid());
            }
            return u"o" + Digits(reinterpret_cast<std::uintptr_t>(object.Get()));
        }
        case VT_I8:
            return u"n" + Digits(key.llVal);
        case VT_UI8:
            return u"n" + Digits(key.ullVal);
        case VT_R8:
        case VT_DATE:
            return u"n" + NumberIdentity(key.dblVal);
        default: {
            VARIANT number{};
            return Succeeded(VariantChangeType(&number, &key, 0, VT_R8))
                       ? u"n" + NumberIdentity(number.dblVal)
                       : u"";
        }
    }
}

HRESULT GiveKey(const Variant& key, VARIANT& place) {
    place = VARIANT{};
    return VariantCopy(&place, &key.Get());
}

using KeysThen = FixedElements<Variant, VARIANT, GiveKey>;
using KeyEnumerator = Enumerator<IEnumVARIANT, IID_IEnumVARIANT, VARIANT, KeysThen>;

}  // namespace

const InterfaceDescription& DescribeDictionary() {
    using I = IDictionary;
    // Setting by reference is setting: `Invoke` takes one for the other.
    static const InterfaceDescription description{
        u"IDictionary",
        IID_IDictionary,
        TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE,
        {
            MakeSetter<&I::put_Item>(DISPID_VALUE, u"Item", In(u"Key"), In(u"pRetItem")),
            MakeGetter<&I::get_Item>(DISPID_VALUE, u"Item", In(u"Key"), Result(u"pRetItem")),
            MakeMethod<&I::Add>(1, u"Add", In(u"Key"), In(u"Item")),
            MakeGetter<&I::get_Count>(2, u"Count", Result(u"pCount")),
            MakeMethod<&I::Exists>(3, u"Exists", In(u"Key"), Result(u"pExists")),
            MakeMethod<&I::Items>(4, u"Items", Result(u"pItemsArray")),
            MakeSetter<&I::put_Key>(5, u"Key", In(u"Key"), In(u"rhs")),
            MakeMethod<&I::Keys>(6, u"Keys", Result(u"pKeysArray")),
            MakeMethod<&I::Remove>(7, u"Remove", In(u"Key")),
            MakeMethod<&I::RemoveAll>(8, u"RemoveAll"),
            MakeSetter<&I::put_CompareMode>(9, u"CompareMode", In(u"pcomp")),
            MakeGetter<&I::get_CompareMode>(9, u"CompareMode", Result(u"pcomp")),
            MakeMethod<&I::get__NewEnum>(DISPID_NEWENUM, u"_NewEnum", Result(u"ppunk")),
            MakeGetter<&I::get_HashVal>(10, u"HashVal", In(u"Key"), Result(u"HashVal")),
        }};
    return description;
}

void* CDictionary::FindInterface(REFIID iid) noexcept {
    IDictionary* const self = this;
    return FindInTable(iid, {{IID_IUnknown, self}, {IID_IDictionary, self}, {IID_IDispatch, self}});
}

HRESULT CDictionary::GetTypeInfoCount(std::uint32_t* count) noexcept {
    if (count == nullptr) {
        return E_POINTER;
    }
    *count = 0;
    return S_OK;
}

HRESULT CDictionary::GetTypeInfo(std::uint32_t, LCID, ITypeInfo** info) noexcept {
    if (info == nullptr) {
        return E_POINTER;
    }
    *info = nullptr;
    return E_NOTIMPL;
}

/// Runs `use` with the entry of a key, or the end of the entries, and with the key's identity.
/// `argument` is another pointer that must not be null.
template <class Use>
HRESULT CDictionary::ForKey(const VARIANT* key, const void* argument, Use use) noexcept {
    if (key == nullptr || argument == nullptr) {
        return E_POINTER;
    }
    return Guarded([&]() -> HRESULT {
        Variant direct;
        if (const HRESULT status = VariantCopyInd(direct.InOut(), key); Failed(status)) {
            return status == E_OUTOFMEMORY ? status : DictionaryInvalidCall;
        }
        std::u16string identity = IdentityOf(direct.Get(), compareMethod == TextCompare);
        if (identity.empty()) {
            return DictionaryInvalidCall;
        }
        const auto found = byIdentity.find(identity);
        return use(found == byIdentity.end() ? entries.end() : found->second, identity, direct);
    });
}

/// Appends an entry with the content of `key` and `item`, which are empty afterwards.
void CDictionary::Append(std::u16string& identity, Variant& key, Variant& item) {
    Entries added(1);
    added.front().identity = std::move(identity);
    byIdentity.emplace(added.front().identity, added.begin());
    added.front().key = std::move(key);
    added.front().item = std::move(item);
    entries.splice(entries.end(), added);
}

HRESULT CDictionary::List(Variant Entry::*part, VARIANT* list) const {
    if (list == nullptr) {
        return E_POINTER;
    }
    *list = VARIANT{};
    ArrayPtr array(
        SafeArrayCreateVector(VT_VARIANT, 0, static_cast<std::uint32_t>(entries.size())));
    if (array == nullptr) {
        return E_OUTOFMEMORY;
    }
    auto* element = static_cast<VARIANT*>(array->pvData);
    for (const Entry& entry : entries) {
        if (const HRESULT status = VariantCopy(element++, &(entry.*part).Get()); Failed(status)) {
            return status;
        }
    }
    list->vt = VT_ARRAY | VT_VARIANT;
    list->parray = array.release();
    return S_OK;
}

HRESULT CDictionary::Set(VARIANT* key, VARIANT* item, bool mayReplace) noexcept {
    return ForKey(key, item, [&](auto entry, std::u16string& identity, Variant& direct) {
        Variant copy;
        const HRESULT status = VariantCopyInd(copy.InOut(), item);
        if (Failed(status)) {
            return status;
        }
        if (entry == entries.end()) {
            Append(identity, direct, copy);
            return S_OK;
        }
        if (!mayReplace) {
            return DictionaryKeyExists;
        }
        std::swap(*entry->item.InOut(), *copy.InOut());
        return S_OK;
    });
}

HRESULT CDictionary::putref_Item(VARIANT* Key, VARIANT* Item) noexcept {
    return Set(Key, Item, true);
}

HRESULT CDictionary::put_Item(VARIANT* Key, VARIANT* Item) noexcept {
    return Set(Key, Item, true);
}

HRESULT CDictionary::Add(VARIANT* Key, VARIANT* Item) noexcept {
    return Set(Key, Item, false);
}

HRESULT CDictionary::get_Item(VARIANT* Key, VARIANT* Item) noexcept {
    return ForKey(Key, Item, [&](auto entry, std::u16string& identity, Variant& direct) {
        *Item = VARIANT{};
        if (entry == entries.end()) {
            Variant nothing;
            Append(identity, direct, nothing);
            return S_OK;
        }
        return VariantCopy(Item, &entry->item.Get());
    });
}

HRESULT CDictionary::get_Count(std::int32_t* Count) noexcept {
    if (Count == nullptr) {
        return E_POINTER;
    }
    *Count = static_cast<std::int32_t>(entries.size());
    return S_OK;
}

HRESULT CDictionary::Exists(VARIANT* Key, VARIANT_BOOL* Found) noexcept {
    return ForKey(Key, Found, [&](auto entry, auto&, auto&) {
        *Found = entry == entries.end() ? VARIANT_FALSE : VARIANT_TRUE;
        return S_OK;
    });
}

HRESULT CDictionary::Items(VARIANT* Items) noexcept {
    return List(&Entry::item, Items);
}

HRESULT CDictionary::Keys(VARIANT* Keys) noexcept {
    return List(&Entry::key, Keys);
}

HRESULT CDictionary::put_Key(VARIANT* Key, VARIANT* NewKey) noexcept {
    return ForKey(Key, NewKey, [&](auto old, auto&, auto&) {
        return ForKey(NewKey, NewKey, [&](auto other, std::u16string& identity, Variant& key) {
            if (old == entries.end()) {
                return DictionaryKeyMissing;
            }
            if (other != entries.end()) {
                return DictionaryKeyExists;
            }
            auto node = byIdentity.extract(old->identity);
            old->identity = std::move(identity);
            node.key() = old->identity;
            byIdentity.insert(std::move(node));
            std::swap(*old->key.InOut(), *key.InOut());
            return S_OK;
        });
    });
}

HRESULT CDictionary::Remove(VARIANT* Key) noexcept {
    return ForKey(Key, Key, [&](auto entry, auto&, auto&) {
        if (entry == entries.end()) {
            return DictionaryKeyMissing;
        }
        byIdentity.erase(entry->identity);
        Entries removed;  // which may call back when it ends
        removed.splice(removed.end(), entries, entry);
        return S_OK;
    });
}

HRESULT CDictionary::RemoveAll() noexcept {
    byIdentity.clear();
    Entries removed;
    removed.swap(entries);
    return S_OK;
}

HRESULT CDictionary::put_CompareMode(std::int32_t Method) noexcept {
    if (!entries.empty()) {
        return DictionaryInvalidCall;
    }
    compareMethod = Method;
    return S_OK;
}

HRESULT CDictionary::get_CompareMode(std::int32_t* Method) noexcept {
    if (Method == nullptr) {
        return E_POINTER;
    }
    *Method = compareMethod;
    return S_OK;
}

HRESULT CDictionary::get__NewEnum(IUnknown** Enumerator) noexcept {
    if (Enumerator == nullptr) {
        return E_POINTER;
    }
    *Enumerator = nullptr;
    return Guarded([&] {
        std::vector<Variant> keys;
        for (const Entry& entry : entries) {
            const HRESULT status = GiveKey(entry.key, *keys.emplace_back().InOut());
            if (Failed(status)) {
                return status;
            }
        }
        return KeyEnumerator::Create(KeysThen(std::move(keys), this), Enumerator);
    });
}

HRESULT CDictionary::get_HashVal(VARIANT* Key, VARIANT* Hash) noexcept {
    return ForKey(Key, Hash, [&](auto, std::u16string& identity, auto&) {
        *Hash = VARIANT{};
        Hash->vt = VT_I4;
        Hash->lVal = static_cast<std::int32_t>(std::hash<std::u16string>()(identity) & 0x7FFFFFFF);
        return S_OK;
    });
}

}  // namespace generalutilities
