// OrderFamily: order and groups.
#pragma once

#include <cstdint>
#include <span>
#include <vector>
#include "brushwork/export.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API OrderFamily {
  public:
    // Above the layer of index `to` (members counted; 0: the bottom), into the group of that id
    // (-1: where the target stands).
    bool moveLayers(std::span<const std::int32_t> ids, std::int32_t to, std::int32_t group = -1,
                    bool dryRun = false);
    std::int32_t makeGroupFrom(std::span<const std::int32_t> ids);
    bool ungroup(std::span<const std::int32_t> ids, bool keepGroup = false);
    std::int32_t duplicateLayer();
    bool duplicateLayers(std::span<const std::int32_t> ids, std::vector<std::int32_t>& newIds);

  protected:
    explicit OrderFamily(FacadeState& state) : state_(state) {}
    OrderFamily(const OrderFamily&) = delete;
    OrderFamily& operator=(const OrderFamily&) = delete;
    ~OrderFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
