// Strokes on an image of one channel: a mask, a stencil, the selection. Brushes lay colours, so
// they paint into a picture of their own, whose alpha is then laid over the image as it was.
#pragma once

#include "facade/facade_state.h"

namespace brushwork {

// The picture to paint into, in the image's coordinates. `target` as it is now is what the stroke
// is laid over.
[[nodiscard]] ilSmartImage* openCoverage(FacadeState& state, LayerStack& stack, Layer& layer,
                                         ilSmartImage& target);
// A box of the picture goes into the image. Nothing for strokes without one.
void layCoverage(LiveStroke& stroke, const ilTile& touched);

}  // namespace brushwork
