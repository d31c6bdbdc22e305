// Several layers into one.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// Two layers of one list, neither a group nor the selection; the lower takes pixels of the upper's
// kind, so it holds no shapes.
[[nodiscard]] bool mergeable(const StackParts& stack, std::int32_t id, std::int32_t idBelow);
// Draws the one into the other, which keeps its blend mode, is shown and becomes active. What is
// attached to either is worked in, and goes.
bool mergeDown(StackParts& stack, std::int32_t id, std::int32_t idBelow);
// All visible layers of the top level into a new one, named as the lowest and in its place, or
// above the layer at index `at` (members counted, as before the merge). Hidden members of groups
// stay. False: fewer than two layers, and no group, are visible.
bool mergeVisible(StackParts& stack, bool dryRun, std::int32_t at, bool presentIt);
// Into the lowest layer, of those that are visible or of all; hidden ones go with the latter.
// Layers flagged to be kept stay above it, and the last of them becomes active.
bool flatten(StackParts& stack, bool visibleOnly);
// The group becomes a layer, in its place or above the layer at index `at`; hidden members go.
bool flattenGroup(StackParts& stack, std::int32_t id, bool dryRun, std::int32_t at, bool presentIt);

}  // namespace brushwork::stack
