#pragma once

#include <cstdint>

namespace generalutilities {

/// Takes the percent values of a running export or import. Called on the working thread, from
/// inside the call that works.
class IExtViewProgress {
  public:
    virtual void ReportProgress(std::int32_t percent, std::int32_t targetLangId) = 0;

  protected:
    ~IExtViewProgress() = default;
};

}  // namespace generalutilities
