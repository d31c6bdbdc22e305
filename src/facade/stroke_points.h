// Points of the pen.
#pragma once

#include "facade/facade_state.h"

namespace brushwork {

// View pixels. Ignored outside a stroke.
void addStrokePoint(FacadeState& state, const StrokeInputPoint& point);

}  // namespace brushwork
