#include "strokes/stroke/stroke_replay.h"

namespace brushwork::npc {

StampPoint replayedPoint(const StrokePointData& point, const BrushParameters& brush,
                         const ReplayValues& values) {
    const float pressure = !(point.pressure > 0.0f) ? 0.0f
                           : point.pressure < 1.0f  ? point.pressure
                                                    : 1.0f;
    StampPoint stamp;
    stamp.x = point.x;
    stamp.y = point.y;
    stamp.radius = brush.radiusLow + (brush.radiusHigh - brush.radiusLow) * pressure;
    stamp.opacity = brush.opacityLow + (brush.opacityHigh - brush.opacityLow) * pressure;
    stamp.flow = values.flow;
    stamp.angle = values.angle;
    stamp.scaleX = values.scaleX;
    stamp.scaleY = values.scaleY;
    stamp.textureStrength = values.textureStrength;
    return stamp;
}

bool replayStroke(StrokeRenderer& renderer, std::span<const StrokePointData> points,
                  const ReplayValues& values) {
    const auto stamps = renderer.getStampRenderer();
    if (points.empty() || !stamps || renderer.begun()) return false;
    const StrokeParameters before = *renderer.parameters();
    StrokeParameters straight = before;
    straight.interpolationKind = 0;
    renderer.setParameters(straight, nullptr);
    renderer.beginStroke(false);
    for (const StrokePointData& point : points)
        renderer.addPoint(replayedPoint(point, stamps->parameters(), values));
    renderer.endStroke();
    renderer.setParameters(before, nullptr);
    return true;
}

}  // namespace brushwork::npc
