#include "collections/long_set_component.h"

#include <generalutilities/automation/pointers.h>

#include "frame/counted.h"

#include <mutex>
#include <optional>
#include <unordered_set>

namespace generalutilities {
namespace {

/// The sets of this implementation that are alive. `_GetSet` hands out a bare address; whether an
/// address may be followed is asked here, since another implementation gives addresses of its own.
class LiveSets {
  public:
    void Add(const OrderedLongs* set) {
        const std::lock_guard lock(mutex);
        sets.insert(set);
    }
    void Remove(const OrderedLongs* set) {
        const std::lock_guard lock(mutex);
        sets.erase(set);
    }
    bool Contains(const void* set) {
        const std::lock_guard lock(mutex);
        return sets.contains(set);
    }

  private:
    std::mutex mutex;
    std::unordered_set<const void*> sets;
};

LiveSets& Live() {
    static LiveSets live;
    return live;
}

/// Walks a set that may change meanwhile. The position is a value of the set, or the end.
class LongSetEnumerator final : public Counted<LongSetEnumerator, IEnumVARIANT, IID_IEnumVARIANT> {
  public:
    LongSetEnumerator(IUnknown* setObject, const OrderedLongs& setValues)
        : owner(ComPtr<IUnknown>::Share(setObject)), values(setValues) {
        Reset();
    }

    HRESULT Next(std::uint32_t count, VARIANT* out, std::uint32_t* fetched) noexcept override {
        if (out == nullptr || (count > 1 && fetched == nullptr)) {
            return E_POINTER;
        }
        std::uint32_t written = 0;
        auto at = Place();
        for (; written < count && at != values.end(); ++at, ++written) {
            out[written].vt = VT_I4;
            out[written].lVal = *at;
        }
        MoveTo(at);
        if (fetched != nullptr) {
            *fetched = written;
        }
        return written == count ? S_OK : S_FALSE;
    }
    HRESULT Skip(std::uint32_t count) noexcept override {
        auto at = Place();
        for (; count > 0 && at != values.end(); --count) {
            ++at;
        }
        MoveTo(at);
        return count == 0 ? S_OK : S_FALSE;
    }
    HRESULT Reset() noexcept override {
        MoveTo(values.begin());
        return S_OK;
    }
    HRESULT Clone(IEnumVARIANT** clone) noexcept override {
        if (clone == nullptr) {
            return E_POINTER;
        }
        *clone = nullptr;
        return Guarded([&] {
            auto* const copy = new LongSetEnumerator(owner.Get(), values);
            copy->position = position;
            return copy->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(clone));
        });
    }

  private:
    /// A value that was removed while it was the position gives its place to the next greater one.
    OrderedLongs::Iterator Place() const {
        return position ? values.LowerBound(*position) : values.end();
    }
    void MoveTo(OrderedLongs::Iterator place) {
        position = place == values.end() ? std::nullopt : std::optional(*place);
    }

    ComPtr<IUnknown> owner;  ///< keeps the values alive
    const OrderedLongs& values;
    std::optional<std::int32_t> position;
};

}  // namespace

CLongSet::CLongSet() {
    Live().Add(&values);
}

CLongSet::~CLongSet() {
    Live().Remove(&values);
}

void* CLongSet::FindInterface(REFIID iid) noexcept {
    ILongSet* const standard = this;
    return FindInTable(
        iid, {{IID_IUnknown, standard}, {IID_IDispatch, standard}, {IID_ILongSet, standard}});
}

HRESULT CLongSet::Add(std::int32_t Val) noexcept {
    return Guarded([&] {
        values.Insert(Val);
        return S_OK;
    });
}

HRESULT CLongSet::Remove(std::int32_t Val) noexcept {
    values.Erase(Val);
    return S_OK;
}

HRESULT CLongSet::get_Count(std::int32_t* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = static_cast<std::int32_t>(values.Count());
    return S_OK;
}

HRESULT CLongSet::get_Item(std::int32_t n, std::int32_t* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    if (n < 1) {
        return E_INVALIDARG;
    }
    const auto found = values.At(static_cast<std::size_t>(n) - 1);
    if (found == values.end()) {
        return E_FAIL;
    }
    *pVal = *found;
    return S_OK;
}

HRESULT CLongSet::get__NewEnum(IUnknown** pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = nullptr;
    return Guarded([&] {
        auto* const enumerator = new LongSetEnumerator(this, values);
        return enumerator->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(pVal));
    });
}

HRESULT CLongSet::IntersectWith(ILongSet* OtherSet, ILongSet** ppVal) noexcept {
    if (OtherSet == nullptr) {
        return E_INVALIDARG;
    }
    void* address = nullptr;
    if (Failed(OtherSet->_GetSet(&address)) || !Live().Contains(address)) {
        return E_INVALIDARG;
    }
    const auto& others = *static_cast<const OrderedLongs*>(address);
    const HRESULT status =
        CreateStandalone<CLongSet>(nullptr, IID_ILongSet, reinterpret_cast<void**>(ppVal));
    if (Failed(status)) {
        return status;
    }
    for (auto mine = values.begin(), theirs = others.begin();
         mine != values.end() && theirs != others.end();) {
        if (*mine < *theirs) {
            ++mine;
        } else if (*theirs < *mine) {
            ++theirs;
        } else {
            if (const HRESULT added = (*ppVal)->Add(*mine); Failed(added)) {
                (*ppVal)->Release();
                *ppVal = nullptr;
                return added;
            }
            ++mine;
            ++theirs;
        }
    }
    return S_OK;
}

HRESULT CLongSet::_GetSet(void** pVal) noexcept {
    if (pVal == nullptr) {
        return E_INVALIDARG;
    }
    *pVal = &values;
    return S_OK;
}

}  // namespace generalutilities
