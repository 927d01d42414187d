#pragma once

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/ext_view_helper.h>

#include <cstdint>
#include <functional>

namespace generalutilities::cli {

/// Connects a function to the events of an `ExtViewHelper` for as long as this object lives. The
/// function gets the percent values of exports and imports, from inside the call that works, and
/// must not throw.
class EventConnection {
  public:
    EventConnection(const ComPtr<IExtViewHelper>& helper, std::function<void(int percent)> percent);
    ~EventConnection();
    EventConnection(const EventConnection&) = delete;
    EventConnection& operator=(const EventConnection&) = delete;

  private:
    ComPtr<IConnectionPoint> point;
    std::uint32_t cookie = 0;
};

}  // namespace generalutilities::cli
