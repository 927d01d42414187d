#pragma once

#include "platform/drawing/device_context.h"

#include <memory>

namespace generalutilities {

/// The open context behind a handle, kept while the result is; null for any other number, also for
/// one that stands for something else than a context.
std::shared_ptr<DeviceContext> FindDeviceContext(std::int32_t handle);

}  // namespace generalutilities
