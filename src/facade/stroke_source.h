// What a stroke paints with: the colour, an image, or pixels of another layer.
#pragma once

#include "facade/facade_state.h"
#include "strokes/stamp/stamp_renderer.h"

namespace brushwork {

// The brush as the renderer takes it: with the current colour and texture. `gray`: for a target of
// one channel, where coverage is all.
[[nodiscard]] BrushParameters brushFor(const BrushState& state, bool gray);
// Felt that stays wet from stroke to stroke.
[[nodiscard]] bool keepsItsPaint(const StrokeParameters& stroke, const BrushParameters& brush);
// A clone source goes in by its place; otherwise the brush's own colour counts, or what it still
// carries from the stroke before.
void openSource(const FacadeState& state, LayerStack& stack, Layer& layer,
                npc::StampRenderer& stamps);

}  // namespace brushwork
