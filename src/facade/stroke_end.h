// Pen-up, and strokes that are taken back.
#pragma once

#include "facade/facade_state.h"

namespace brushwork {

void endStroke(FacadeState& state);
// All is as before the stroke.
void cancelStroke(FacadeState& state);

}  // namespace brushwork
