// Change of the active layer.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// Clamped to 1..count + 1.
void setActiveIndex(StackParts& stack, std::int32_t index, bool refresh, bool force, bool members);
void setActiveLayer(StackParts& stack, Layer* layer, bool refresh, bool force);

}  // namespace brushwork::stack
