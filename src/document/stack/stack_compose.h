// Dirty tiles onto a target.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// `useMask`: a stroke that waits for the paint mask is shown as it will be. `withSelection`: its
// tint is shown, and masks aren't beside it.
void compositeTiles(StackParts& stack, ilSmartImage* above, ilSmartImage* below, bool useMask,
                    bool withSelection, PaintOps& target);
// On the plane, with the caches; then the surface is handed to the host.
void compositeNow(StackParts& stack);

}  // namespace brushwork::stack
