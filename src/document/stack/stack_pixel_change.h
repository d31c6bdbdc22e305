// What an edit of one layer's pixels goes through and ends with.
#pragma once

#include <functional>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// Draws by the painter that the tools get, so that what restricts painting holds. Its factors are
// those of a copy before and after.
void drawRestricted(StackParts& stack, const std::function<void(PaintOps&)>& draw);
// On the layer's colour, though the tools paint on its stencil: of edits of all of a layer.
void drawOnColor(StackParts& stack, const std::function<void(PaintOps&)>& draw);
// What shows the layer, is clipped or held back by it, is out of date.
void noteNewPixels(StackParts& stack, Layer& layer);
// The same, with the whole canvas to be composed again.
void pixelsChanged(StackParts& stack, Layer& layer, bool presentIt);

}  // namespace brushwork::stack
