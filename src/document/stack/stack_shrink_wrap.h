// A halo of one colour around what is drawn on the active layer.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// The picture is blurred by `blur` pixels and flooded from outside by the tolerance (0 to 1); what
// the flood doesn't reach gets the colour, under what is drawn. So a larger blur makes a wider
// halo, and holes are closed. Nothing for other than paint layers; without pixels that is logged.
void shrinkWrap(StackParts& stack, const LayerColor& color, float blur, float tolerance);

}  // namespace brushwork::stack
