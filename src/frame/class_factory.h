#pragma once

#include <generalutilities/automation/unknown.h>

#include "frame/object.h"

#include <atomic>

namespace generalutilities {

/// The one kind of class factory, for all classes.
///
/// The class table holds the first reference, which does not count for the module's lock. The lock
/// goes up when a caller takes the second reference and down when the last caller's is gone.
class ClassFactory final : public IClassFactory {
  public:
    explicit ClassFactory(Creator create) : creator(create) {}

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override;
    std::uint32_t AddRef() noexcept override;
    std::uint32_t Release() noexcept override;
    HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override;
    HRESULT LockServer(std::int32_t lock) noexcept override;

  private:
    Creator creator;
    std::atomic<std::uint32_t> references{1};
};

}  // namespace generalutilities
