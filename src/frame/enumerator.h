#pragma once

#include <generalutilities/automation/pointers.h>

#include "frame/counted.h"
#include "frame/object.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace generalutilities {

/// What `IEnumVARIANT` and the other enumerators have in common. A source stands behind it, whose
/// copy goes to a clone:
///
///     /// Gives up to `count` elements and goes on behind them; `given` counts them from 0.
///     HRESULT Give(Element* places, std::uint32_t count, std::uint32_t& given);
///     std::uint32_t Skip(std::uint32_t count);  // how many there were
///     void Reset();
template <class Interface, const IID& Identifier, class Element, class Source>
class Enumerator final
    : public Counted<Enumerator<Interface, Identifier, Element, Source>, Interface, Identifier> {
  public:
    /// A new reference in `place`. Throws std::bad_alloc.
    template <class Place>
    static HRESULT Create(Source source, Place** place) {
        *place = new Enumerator(std::move(source));
        (*place)->AddRef();
        return S_OK;
    }

    /// A failure on the way leaves what was given, and its number, with the caller.
    HRESULT Next(std::uint32_t count, Element* places, std::uint32_t* fetched) noexcept override {
        if (places == nullptr || (fetched == nullptr && count > 1)) {
            return E_POINTER;
        }
        std::uint32_t given = 0;
        const HRESULT status = source.Give(places, count, given);
        if (fetched != nullptr) {
            *fetched = given;
        }
        return Failed(status) ? status : given == count ? S_OK : S_FALSE;
    }
    HRESULT Skip(std::uint32_t count) noexcept override {
        return source.Skip(count) == count ? S_OK : S_FALSE;
    }
    HRESULT Reset() noexcept override {
        source.Reset();
        return S_OK;
    }
    HRESULT Clone(Interface** clone) noexcept override {
        if (clone == nullptr) {
            return E_POINTER;
        }
        *clone = nullptr;
        return Guarded([&] { return Create(source, clone); });
    }

  private:
    explicit Enumerator(Source from) : source(std::move(from)) {}

    Source source;
};

/// The source of an enumerator over elements that are fixed when it is made. `Copy(held, place)`
/// gives one of them out. The object that they are of lives as long.
template <class Held, class Element, HRESULT (*Copy)(const Held&, Element&)>
class FixedElements {
  public:
    FixedElements(std::vector<Held> fixed, IUnknown* object)
        : elements(std::make_shared<const std::vector<Held>>(std::move(fixed))),
          owner(ComPtr<IUnknown>::Share(object)) {}

    HRESULT Give(Element* places, std::uint32_t count, std::uint32_t& given) {
        HRESULT status = S_OK;
        for (; given < count && position < elements->size(); ++given, ++position) {
            status = Copy((*elements)[position], places[given]);
            if (Failed(status)) {
                break;
            }
        }
        return status;
    }
    std::uint32_t Skip(std::uint32_t count) {
        const auto step = std::min<std::size_t>(count, elements->size() - position);
        position += step;
        return static_cast<std::uint32_t>(step);
    }
    void Reset() { position = 0; }

  private:
    std::shared_ptr<const std::vector<Held>> elements;
    ComPtr<IUnknown> owner;
    std::size_t position = 0;
};

}  // namespace generalutilities
