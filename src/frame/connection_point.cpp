#include "frame/connection_point.h"

#include "frame/enumerator.h"

#include <algorithm>

namespace generalutilities {

namespace {

HRESULT GiveConnection(const EventConnection& connection, CONNECTDATA& place) {
    connection.sink->AddRef();
    place = {connection.sink.Get(), connection.cookie};
    return S_OK;
}

HRESULT GivePoint(IConnectionPoint* const& point, IConnectionPoint*& place) {
    point->AddRef();
    place = point;
    return S_OK;
}

using Connections = FixedElements<EventConnection, CONNECTDATA, GiveConnection>;
using ConnectionEnumerator =
    Enumerator<IEnumConnections, IID_IEnumConnections, CONNECTDATA, Connections>;
using Points = FixedElements<IConnectionPoint*, IConnectionPoint*, GivePoint>;
using PointEnumerator =
    Enumerator<IEnumConnectionPoints, IID_IEnumConnectionPoints, IConnectionPoint*, Points>;

}  // namespace

HRESULT ConnectionPointContainer::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    if (points == nullptr) {
        return E_POINTER;
    }
    *points = nullptr;
    return Guarded([&] { return PointEnumerator::Create(Points({&point}, this), points); });
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
        const std::vector<EventConnection> connected = point.connections;
        for (const EventConnection& connection : connected) {
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
                                    [&](const EventConnection& c) { return c.cookie == cookie; });
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
    return Guarded(
        [&] { return ConnectionEnumerator::Create(Connections(connections, this), enumerated); });
}

}  // namespace generalutilities
