#pragma once

#include <generalutilities/interfaces/collections.h>

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

#include <vector>

namespace generalutilities {

/// The class behind `LongStack`.
class CLongStack : public Dual<ILongStack, DescribeLongStack> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT Push(std::int32_t lValue) noexcept override;
    HRESULT Pop(std::int32_t* plValue) noexcept override;
    HRESULT Peek(std::int32_t* plValue) noexcept override;
    HRESULT Contains(std::int32_t lValue, VARIANT_BOOL* pbExists) noexcept override;

  private:
    std::vector<std::int32_t> values;  ///< the top stands last
};

}  // namespace generalutilities
