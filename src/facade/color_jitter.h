// A colour changed at random for one stroke.
#pragma once

#include "facade/brush_state.h"

namespace brushwork {

// Keeps the colour in jitterBase and draws a new one, from the process's random source. Nothing
// while jitter is off.
void jitterColor(BrushState& brush);
// Gives the kept colour back.
void restoreColor(BrushState& brush);

}  // namespace brushwork
