// Marks on the screen, a red square of 3 by 3 pixels at each point of the stroke, while the host's
// debug level asks for them. The document stays free of them; they go where it is shown anew.
#pragma once

#include "facade/facade_state.h"

namespace brushwork {

// A point of the live stroke, in layer pixels.
void markPoint(FacadeState& state, const ViewPoint& place);
// Draws again what showing the canvas wiped out.
void drawMarks(const LiveStroke& stroke);

}  // namespace brushwork
