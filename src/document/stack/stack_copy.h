// Whole stacks.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// A copy for undo: all ids, pages shared, active layer by its index; plane and handle shared.
void copyParts(StackParts& to, const StackParts& from);
// Rebuilds the layers as copies of another's.
void copyStackFrom(StackParts& to, const StackParts& from);
// The same, every layer resampled.
bool scaleFrom(StackParts& to, const StackParts& from, float scale, SampleMode mode);
// What each image of each layer hangs from goes into what that hangs from: chains lose one link.
void collapseImages(StackParts& stack);
void dump(StackParts& stack);

}  // namespace brushwork::stack
