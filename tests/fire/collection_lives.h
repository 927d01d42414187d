#pragma once

#include <generalutilities/automation/functions.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include <string>

namespace generalutilities::fire {

inline std::int32_t CompareLongs(const void* a, const void* b) {
    return *static_cast<const std::int32_t*>(a) - *static_cast<const std::int32_t*>(b);
}

/// The whole life of a set, a stack, a dictionary and a sort, whose comparison is the handle
/// `compare`: the first failure. `answer`, if there is one, gets what they gave.
inline HRESULT LiveWithCollections(BSTR text, std::int32_t compare,
                                   std::u16string* answer = nullptr) {
    HRESULT first = S_OK;
    const auto done = [&first](HRESULT status) {
        first = Failed(first) ? first : status;
        return Succeeded(status);
    };
    const auto tell = [answer](std::int32_t number) {
        if (answer != nullptr) {
            *answer += static_cast<char16_t>(number);
        }
    };
    const auto create = [&done](const CLSID& clsid, REFIID iid, void** object) {
        return done(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object));
    };
    ComPtr<ILongSet> set, both;
    ComPtr<ILongStack> stack;
    ComPtr<IQLNDictionary> dictionary;
    ComPtr<IQLNSort> sort;
    if (!create(CLSID_LongSet, IID_ILongSet, set.OutVoid()) ||
        !create(CLSID_LongStack, IID_ILongStack, stack.OutVoid()) ||
        !create(CLSID_qlnDictionary, IID_IQLNDictionary, dictionary.OutVoid()) ||
        !create(CLSID_QLNSort, IID_IQLNSort, sort.OutVoid())) {
        return first;
    }
    std::int32_t numbers[40];
    VARIANT item{};
    item.vt = VT_BSTR;
    item.bstrVal = text;
    for (std::int32_t i = 0; i < 40; ++i) {
        numbers[i] = i * 7 % 40;
        VARIANT key{};
        key.vt = VT_I4;
        key.lVal = numbers[i];
        done(set->Add(numbers[i]));
        done(stack->Push(numbers[i]));
        done(dictionary->Add(&key, i % 2 == 0 ? &key : &item));
        Variant given;
        done(dictionary->get_Item(&key, given.Out()));
        tell(given.Get().vt);
    }
    ComPtr<IUnknown> walk;
    if (done(set->get__NewEnum(walk.Out()))) {
        const auto values = walk.As<IEnumVARIANT>(IID_IEnumVARIANT);
        for (VARIANT value{}; values->Next(1, &value, nullptr) == S_OK;) {
            tell(value.lVal);
        }
    }
    std::int32_t number = 0;
    if (done(set->IntersectWith(set.Get(), both.Out())) && done(both->get_Count(&number))) {
        tell(number);
    }
    done(stack->Pop(&number));
    tell(number);
    Variant keys, items;
    done(dictionary->Keys(keys.Out()));
    done(dictionary->Items(items.Out()));
    done(dictionary->Remove(&item));
    done(dictionary->put_Key(&item, &item));
    done(dictionary->get_Count(&number));
    tell(number);
    done(dictionary->RemoveAll());
    done(sort->Sort(numbers, sizeof numbers[0], 40, compare));
    for (const std::int32_t sorted : numbers) {
        tell(sorted);
    }
    return first;
}

}  // namespace generalutilities::fire
