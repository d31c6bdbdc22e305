// Frames of a multi-layer transform, drawn from reduced composites.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

void clearScaled(StackParts& stack);
// Builds what is missing for the present view. False: there is nothing to draw that way.
bool prepareScaled(StackParts& stack);
void drawScaledFrame(StackParts& stack, ilSPMemoryImg& target);

}  // namespace brushwork::stack
