// What a brush carries along: paint that was picked up, or the piece of canvas it drags.
//
// The buffers become the source of the stamp renderer, which writes to them in place.
#pragma once

#include <cstdint>

#include "brushwork/stroke_parameters.h"
#include "strokes/stamp/stamp_renderer.h"

namespace brushwork::npc {

// Side of the square buffers of a stroke, in pixels: the widest stamp and a pixel on each side.
[[nodiscard]] std::int32_t pickupSide(const StrokeParameters& stroke, const BrushParameters& brush);

// Makes the buffers for a stroke that begins at (x, y) and fills them as its mode begins: from the
// canvas, with the brush's colour, or empty. Modes that carry nothing are left alone. Without
// memory there is no source.
void preparePickupBuffers(StampRenderer& renderer, BlendModeId mode, const StrokeParameters& stroke,
                          float x, float y);

// For a brush that drags the canvas: what lay under the stamp, (tangentX, tangentY) back, becomes
// the source.
void fetchDraggedCanvas(StampRenderer& renderer, const StampPoint& stamp, float tangentX,
                        float tangentY);

}  // namespace brushwork::npc
