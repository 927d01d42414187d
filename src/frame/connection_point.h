#pragma once

#include <generalutilities/automation/pointers.h>

#include <vector>

namespace generalutilities {

/// A sink that is called, and the number that ends this.
struct EventConnection {
    ComPtr<IDispatch> sink;
    std::uint32_t cookie;
};

/// The one connection point of an object that has events, with the container interface of that
/// object.
///
/// The point lives inside the object and passes the operations of `IUnknown` on to it. The class
/// derives from this, names `IConnectionPointContainer` in its interface table, and calls `Fire`.
class ConnectionPointContainer : public IConnectionPointContainer {
  public:
    explicit ConnectionPointContainer(const IID& eventInterface) : point(*this, eventInterface) {}

    HRESULT EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
    HRESULT FindConnectionPoint(REFIID iid, IConnectionPoint** found) noexcept override;

    /// Calls `Invoke` of every connected sink, in the order of their connection, with two VT_I4
    /// arguments by position. What a sink answers is not looked at; a sink may connect or
    /// disconnect sinks while it is called, which counts from the next event on.
    void Fire(DISPID event, std::int32_t first, std::int32_t second) noexcept;

  private:
    class Point final : public IConnectionPoint {
      public:
        Point(ConnectionPointContainer& owner, const IID& events)
            : container(owner), eventInterface(events) {}
        ~Point();

        HRESULT QueryInterface(REFIID iid, void** object) noexcept override;
        std::uint32_t AddRef() noexcept override { return container.AddRef(); }
        std::uint32_t Release() noexcept override { return container.Release(); }
        HRESULT GetConnectionInterface(IID* iid) noexcept override;
        HRESULT GetConnectionPointContainer(IConnectionPointContainer** owner) noexcept override;
        HRESULT Advise(IUnknown* sink, std::uint32_t* cookie) noexcept override;
        HRESULT Unadvise(std::uint32_t cookie) noexcept override;
        HRESULT EnumConnections(IEnumConnections** connections) noexcept override;

        std::vector<EventConnection> connections;

      private:
        ConnectionPointContainer& container;
        const IID& eventInterface;
        std::uint32_t lastCookie = 0;
    };

    Point point;
};

}  // namespace generalutilities
