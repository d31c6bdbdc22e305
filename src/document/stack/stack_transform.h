// Several layers transformed as one, shown live.
#pragma once

#include <span>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

bool beginTransform(StackParts& stack, std::span<const std::int32_t> ids, std::int32_t mode,
                    std::int32_t arg, bool keep);
void updateTransform(StackParts& stack, const TransformRecord& record);
// `keep`: what was shown becomes the layers' pixels.
void endTransform(StackParts& stack, bool keep);
// Commits one that is open.
void closeTransform(StackParts& stack);
void setTransformPivot(StackParts& stack, float x, float y);

}  // namespace brushwork::stack
