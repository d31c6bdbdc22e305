// Copies of layers.
#pragma once

#include <span>
#include <vector>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// Of the active layer, with a fresh id and a unique name; only selected pixels where a paint mask
// restricts. The new id, or -1.
std::int32_t duplicateLayer(StackParts& stack);
// Several, in list order above the topmost of them, which is active afterwards.
bool duplicateLayers(StackParts& stack, std::span<const std::int32_t> ids,
                     std::vector<std::int32_t>& newIds);
// What may be painted on of the active layer goes onto a layer directly above, which is active
// until the caller merges it down. The selection is cleared. -1 for the selection, shapes and
// groups.
std::int32_t newTemporaryLayer(StackParts& stack);

}  // namespace brushwork::stack
