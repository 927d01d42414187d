#pragma once

#include <generalutilities/interfaces/collections.h>

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

#include <ext/pb_ds/assoc_container.hpp>
#include <ext/pb_ds/tree_policy.hpp>

namespace generalutilities {

/// Ascending, without duplicates; a tree that also finds its n-th value in logarithmic time.
using OrderedLongs =
    __gnu_pbds::tree<std::int32_t, __gnu_pbds::null_type, std::less<>, __gnu_pbds::rb_tree_tag,
                     __gnu_pbds::tree_order_statistics_node_update>;

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
