// What restricts painting: the selection, or masks and stencils of the active layer.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// Recomputes selection.active and the paint mask, and re-targets the painters. Nothing while
// compositing is locked, a multi-layer transform is open or the process-wide switch blocks it.
void rebuildPaintMask(StackParts& stack);
[[nodiscard]] bool hasSelection(const StackParts& stack);
// The selection, or the masks and stencils attached above the layer, combined over the box: 1
// channel, 255 free to paint. Null: nothing restricts.
[[nodiscard]] Ref<ilSmartImage> maskComposite(StackParts& stack, Layer& layer, const ilTile& box);

}  // namespace brushwork::stack
