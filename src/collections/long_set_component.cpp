#include "collections/long_set_component.h"

#include "frame/enumerator.h"

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

/// The source of an enumerator over a set that may change meanwhile. The position is a value of the
/// set, or the end.
class LiveValues {
  public:
    LiveValues(IUnknown* setObject, const OrderedLongs& setValues)
        : owner(ComPtr<IUnknown>::Share(setObject)), values(setValues) {
        Reset();
    }

    HRESULT Give(VARIANT* places, std::uint32_t count, std::uint32_t& given) {
        auto at = Place();
        for (; given < count && at != values.end(); ++at, ++given) {
            places[given].vt = VT_I4;
            places[given].lVal = *at;
        }
        MoveTo(at);
        return S_OK;
    }
    std::uint32_t Skip(std::uint32_t count) {
        auto at = Place();
        std::uint32_t skipped = 0;
        for (; skipped < count && at != values.end(); ++skipped) {
            ++at;
        }
        MoveTo(at);
        return skipped;
    }
    void Reset() { MoveTo(values.begin()); }

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

using ValueEnumerator = Enumerator<IEnumVARIANT, IID_IEnumVARIANT, VARIANT, LiveValues>;

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
    return Guarded([&] { return ValueEnumerator::Create(LiveValues(this, values), pVal); });
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
