// Which painter the tools get.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// The painter on the active layer, masked if a paint mask restricts it; reaches 256 pixels beyond
// the canvas. Null while a multi-layer transform is open and without an active layer. Borrowed.
PaintOps* paintOps(StackParts& stack);
// A change drops the painters and makes them anew.
void setPaintOnStencil(StackParts& stack, bool on);
// The document's box; re-bases the painters.
const ilTile& canvasBounds(StackParts& stack);

}  // namespace brushwork::stack
