#pragma once

#include <generalutilities/interfaces/collections.h>

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

namespace generalutilities {

/// The class behind `QLNSort`. It has no state.
class CQLNSort : public Dual<IQLNSort, DescribeQLNSort>, public RichErrors<IID_IQLNSort> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT Sort(void* pArray, std::int32_t lEleSize, std::int32_t lEleCount,
                 std::int32_t pCompFunc) noexcept override;
    HRESULT StringSort(SAFEARRAY** pArray, std::int32_t pCompFunc) noexcept override;
};

}  // namespace generalutilities
