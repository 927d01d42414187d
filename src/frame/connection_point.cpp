#include "frame/connection_point.h"

#include "frame/counted.h"
#include "frame/object.h"

#include <algorithm>

namespace generalutilities {

namespace {

/// An enumerator over values fixed at its making. `Copy` gives an element out with a reference.
template <class Interface, const IID& Identifier, class Element, class Given, auto Copy>
class Enumerator final : public Counted<Enumerator<Interface, Identifier, Element, Given, Copy>,
                                        Interface, Identifier> {
  public:
    Enumerator(std::vector<Element> fixed, std::size_t start)
        : elements(std::move(fixed)), position(start) {}

    HRESULT Next(std::uint32_t count, Given* given, std::uint32_t* fetched) noexcept override {
        if (given == nullptr || (fetched == nullptr && count > 1)) {
            return E_POINTER;
        }
        std::uint32_t written = 0;
        for (; written < count && position < elements.size(); ++written, ++position) {
            given[written] = Copy(elements[position]);
        }
        if (fetched != nullptr) {
            *fetched = written;
        }
        return written == count ? S_OK : S_FALSE;
    }
    HRESULT Skip(std::uint32_t count) noexcept override {
        const std::size_t step = std::min<std::size_t>(count, elements.size() - position);
        position += step;
        return step == count ? S_OK : S_FALSE;
    }
    HRESULT Reset() noexcept override {
        position = 0;
        return S_OK;
    }
    HRESULT Clone(Interface** clone) noexcept override {
        if (clone == nullptr) {
            return E_POINTER;
        }
        *clone = nullptr;
        return Guarded([&] {
            *clone = new Enumerator(elements, position);
            (*clone)->AddRef();
            return S_OK;
        });
    }

  private:
    std::vector<Element> elements;
    std::size_t position;
};

struct HeldConnection {
    ComPtr<IDispatch> sink;
    std::uint32_t cookie;
};

CONNECTDATA GiveConnection(const HeldConnection& connection) {
    connection.sink->AddRef();
    return {connection.sink.Get(), connection.cookie};
}

IConnectionPoint* GivePoint(const ComPtr<IConnectionPoint>& held) {
    held->AddRef();
    return held.Get();
}

using ConnectionEnumerator =
    Enumerator<IEnumConnections, IID_IEnumConnections, HeldConnection, CONNECTDATA, GiveConnection>;
using PointEnumerator = Enumerator<IEnumConnectionPoints, IID_IEnumConnectionPoints,
                                   ComPtr<IConnectionPoint>, IConnectionPoint*, GivePoint>;

}  // namespace

HRESULT ConnectionPointContainer::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    if (points == nullptr) {
        return E_POINTER;
    }
    *points = nullptr;
    return Guarded([&] {
        *points = new PointEnumerator({ComPtr<IConnectionPoint>::Share(&point)}, 0);
        (*points)->AddRef();
        return S_OK;
    });
}

HRESULT ConnectionPointContainer::FindConnectionPoint(REFIID iid,
                                                      IConnectionPoint** found) noexcept {
    if (found == nullptr) {
        return E_POINTER;
    }
    *found = nullptr;
    IID offered;
    point.GetConnectionInterface(&offered);
    if (iid != offered) {
        return CONNECT_E_NOCONNECTION;
    }
    *found = &point;
    point.AddRef();
    return S_OK;
}

void ConnectionPointContainer::Fire(DISPID event, std::int32_t first,
                                    std::int32_t second) noexcept {
    Guarded([&] {
        const std::vector<Point::Connection> connected = point.connections;
        for (const Point::Connection& connection : connected) {
            VARIANT arguments[2]{};  // the last argument stands first
            arguments[0].vt = arguments[1].vt = VT_I4;
            arguments[0].lVal = second;
            arguments[1].lVal = first;
            DISPPARAMS parameters{arguments, nullptr, 2, 0};
            VARIANT result{};
            connection.sink->Invoke(event, GUID_NULL, 0, DISPATCH_METHOD, &parameters, &result,
                                    nullptr, nullptr);
            VariantClear(&result);
        }
        return S_OK;
    });
}

// Here, and not where the header is included: this file alone calls the clients' sinks.
ConnectionPointContainer::Point::~Point() = default;

HRESULT ConnectionPointContainer::Point::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = iid == IID_IUnknown || iid == IID_IConnectionPoint ? this : nullptr;
    if (*object == nullptr) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

HRESULT ConnectionPointContainer::Point::GetConnectionInterface(IID* iid) noexcept {
    if (iid == nullptr) {
        return E_POINTER;
    }
    *iid = eventInterface;
    return S_OK;
}

HRESULT ConnectionPointContainer::Point::GetConnectionPointContainer(
    IConnectionPointContainer** owner) noexcept {
    if (owner == nullptr) {
        return E_POINTER;
    }
    *owner = &container;
    container.AddRef();
    return S_OK;
}

HRESULT ConnectionPointContainer::Point::Advise(IUnknown* sink, std::uint32_t* cookie) noexcept {
    if (sink == nullptr || cookie == nullptr) {
        return E_POINTER;
    }
    *cookie = 0;
    // A sink of a pure dispatch interface may answer to that interface or to IDispatch alone.
    ComPtr<IDispatch> dispatch;
    if (Failed(sink->QueryInterface(eventInterface, dispatch.OutVoid())) &&
        Failed(sink->QueryInterface(IID_IDispatch, dispatch.OutVoid()))) {
        return CONNECT_E_CANNOTCONNECT;
    }
    return Guarded([&] {
        connections.push_back({std::move(dispatch), lastCookie + 1});
        *cookie = ++lastCookie;
        return S_OK;
    });
}

HRESULT ConnectionPointContainer::Point::Unadvise(std::uint32_t cookie) noexcept {
    const auto found = std::find_if(connections.begin(), connections.end(),
                                    [&](const Connection& c) { return c.cookie == cookie; });
    if (found == connections.end()) {
        return CONNECT_E_NOCONNECTION;
    }
    const ComPtr<IDispatch> released = std::move(found->sink);
    connections.erase(found);
    return S_OK;
}

HRESULT ConnectionPointContainer::Point::EnumConnections(IEnumConnections** enumerated) noexcept {
    if (enumerated == nullptr) {
        return E_POINTER;
    }
    *enumerated = nullptr;
    return Guarded([&] {
        std::vector<HeldConnection> held;
        for (const Connection& connection : connections) {
            held.push_back({connection.sink, connection.cookie});
        }
        *enumerated = new ConnectionEnumerator(std::move(held), 0);
        (*enumerated)->AddRef();
        return S_OK;
    });
}

}  // namespace generalutilities
