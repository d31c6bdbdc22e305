// Layers out of the stack.
#pragma once

#include <span>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// Who is active when the layer goes: below it, else above, else the group around; of a group its
// top member. The selection where there is no other.
[[nodiscard]] Layer* successorOf(const StackParts& stack, const Layer& layer);
// With the masks and stencils attached above it. The only layer stays, blank; where that is a group
// or holds shapes, a new one takes its place.
void deleteLayer(StackParts& stack, Layer& layer);
[[nodiscard]] bool canDelete(const StackParts& stack, std::span<const std::int32_t> ids);
bool deleteLayers(StackParts& stack, std::span<const std::int32_t> ids, bool dryRun,
                  bool presentIt);
void clearLayers(StackParts& stack);

}  // namespace brushwork::stack
