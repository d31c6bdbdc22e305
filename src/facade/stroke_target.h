// Where a stroke paints: straight into the layer's image, or into a wet one that is committed at
// its end.
#pragma once

#include "facade/facade_state.h"

namespace brushwork {

// Sets the layer's wet fields if the stroke needs them. The image that stamps go into; null without
// memory.
[[nodiscard]] ilSmartImage* openTarget(FacadeState& state, LayerStack& stack, Layer& layer);

}  // namespace brushwork
