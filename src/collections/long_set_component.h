#pragma once

#include <generalutilities/interfaces/collections.h>

#include "collections/ordered_longs.h"
#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

namespace generalutilities {

/// The class behind `LongSet`.
class CLongSet : public Dual<ILongSet, DescribeLongSet> {
  public:
    CLongSet();
    ~CLongSet();
    CLongSet(const CLongSet&) = delete;
    CLongSet& operator=(const CLongSet&) = delete;

    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT Add(std::int32_t Val) noexcept override;
    HRESULT Remove(std::int32_t Val) noexcept override;
    HRESULT get_Count(std::int32_t* pVal) noexcept override;
    HRESULT get_Item(std::int32_t n, std::int32_t* pVal) noexcept override;
    HRESULT get__NewEnum(IUnknown** pVal) noexcept override;
    HRESULT IntersectWith(ILongSet* OtherSet, ILongSet** ppVal) noexcept override;
    HRESULT _GetSet(void** pVal) noexcept override;

  private:
    OrderedLongs values;
};

}  // namespace generalutilities
