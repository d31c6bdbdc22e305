// Pen-down.
#pragma once

#include "facade/facade_state.h"

namespace brushwork {

// False, with nothing begun: a stroke is open, or there is nothing to paint on.
[[nodiscard]] bool beginStroke(FacadeState& state);

}  // namespace brushwork
