// Order: moving layers, making and dissolving groups.
#pragma once

#include <span>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

struct LayerMove {
    std::int32_t toIndex = 0;      // the layer above which they go, members counted; 0: the bottom
    std::int32_t group = noLayer;  // id of the group they go into; -1: as the target stands
    bool dryRun = false;
    bool makeActive = false;
    bool inheritGroupState = false;
};
[[nodiscard]] bool moveCheck(const StackParts& stack, std::span<const std::int32_t> ids,
                             std::int32_t toIndex, std::int32_t group);
bool moveLayers(StackParts& stack, std::span<const std::int32_t> ids, const LayerMove& move);
// The new group's id, or -1.
std::int32_t makeGroupFrom(StackParts& stack, std::span<const std::int32_t> ids, bool makeActive);
bool ungroup(StackParts& stack, std::span<const std::int32_t> ids, bool keepGroup);

}  // namespace brushwork::stack
