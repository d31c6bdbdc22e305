// A flood fill that stays open until it is ended, so that its tolerance can still be changed.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// At a place of the view, on a layer (its stencil while tools paint there), which is the active one
// only meanwhile. False: nothing to fill there. The fill stays open until it is ended, or another
// layer becomes active.
bool floodFill(StackParts& stack, float x, float y, const LayerColor& color, float tolerance,
               std::int32_t id);
bool continueFill(StackParts& stack, float tolerance);
void endFill(StackParts& stack);
// The pixel of the layer at a place of the view, as four bytes, red lowest.
[[nodiscard]] bool sampleFill(StackParts& stack, float x, float y, std::int32_t id,
                              std::uint32_t& pixel);

}  // namespace brushwork::stack
