// OrderFamily: order and groups, of the current canvas.
//
// Layers are named by id; unknown ids are passed over, and of a group and its members the group
// alone is meant. An operation that can't be done answers -1 or false and changes nothing, one that
// is done files one record of the whole stack.
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
    // (-1: where the target stands), masks and stencils along with the layer that they belong to.
    // False where a group would come into itself. `dryRun`: whether it would be done; nothing
    // changes.
    bool moveLayers(std::span<const std::int32_t> ids, std::int32_t to, std::int32_t group = -1,
                    bool dryRun = false);
    // Puts them into a new group, active then, where the topmost of them stood. Its id.
    std::int32_t makeGroupFrom(std::span<const std::int32_t> ids);
    // Their members come to stand where the groups stood; `keepGroup` leaves above them, in place
    // of each group, a blank layer with its name and attributes.
    bool ungroup(std::span<const std::int32_t> ids, bool keepGroup = false);
    // Of the active layer, above it and active then; while there is a selection, of what it holds.
    // The new id. Copies share their pages until either is painted on.
    std::int32_t duplicateLayer();
    // In their order above the topmost of them; the uppermost copy is active then. `newIds` from
    // below; some may be there after false, which means that memory was short.
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
