// Points of the pen.
#pragma once

#include "facade/facade_state.h"

namespace brushwork {

// View pixels. Ignored outside a stroke.
void addStrokePoint(FacadeState& state, const StrokeInputPoint& point);
// A stamp was laid while the pen rests: every few of them are shown.
void showResting(FacadeState& state);

}  // namespace brushwork
