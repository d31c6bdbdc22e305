// What becomes stale: dirty tiles, caches, the generation.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// A box in canvas coordinates must be composed again; the host is told.
void invalidateRect(StackParts& stack, const ilTile& box);
// A box in the layer's pixels; reported to the host with the layer's id. What shows the box of the
// layer (groups around, composites, for a stencil layer what it clips) is marked there.
void accumulateDirty(StackParts& stack, const ilTile& box, Layer& layer);
void addPaintBounds(StackParts& stack, const ilTile& box);
// The layer's pixels or attributes changed: counts a generation, drops the whole composite, view
// copies of the layer, what the group cache holds from it upward, and the composite it is in.
void noteChange(StackParts& stack, Layer* layer);
// The list changed: index cache and whole composite go.
void noteListChange(StackParts& stack);
// Marks the composite on the layer's side of the active one stale.
void staleSide(StackParts& stack, const Layer& layer);
void staleBoth(StackParts& stack);

}  // namespace brushwork::stack
