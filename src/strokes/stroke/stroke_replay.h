// A stored polyline painted as a stroke.
#pragma once

#include <span>

#include "strokes/stroke/stroke_renderer.h"

namespace brushwork::npc {

// What a replayed point has that isn't stored; radius and opacity follow the brush and the
// pressure.
struct ReplayValues {
    float flow = 1.0f;
    float angle = 0.0f;
    float scaleX = 1.0f, scaleY = 1.0f;
    float textureStrength = 1.0f;
};

// The stamp's size and strength at a pressure, which is brought into 0 to 1.
[[nodiscard]] StampPoint replayedPoint(const StrokePointData& point, const BrushParameters& brush,
                                       const ReplayValues& values);

// Runs straight from point to point; afterwards the renderer's parameters are as before. False, and
// nothing is painted, without points or a stamp renderer and within another stroke.
bool replayStroke(StrokeRenderer& renderer, std::span<const StrokePointData> points,
                  const ReplayValues& values = {});

}  // namespace brushwork::npc
