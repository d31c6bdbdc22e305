// The marching outline of the selection.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

[[nodiscard]] ilImage* selectionOutline(StackParts& stack);
void startSelectionTimer(StackParts& stack);
void stopSelectionTimer(StackParts& stack);
void stepSelectionOutline(StackParts& stack);

}  // namespace brushwork::stack
