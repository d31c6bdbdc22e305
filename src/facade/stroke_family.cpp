#include "brushwork/stroke_family.h"

#include "facade/input_limits.h"
#include "facade/stroke_begin.h"
#include "facade/stroke_end.h"
#include "facade/stroke_points.h"
#include "strokes/stroke/stroke_replay.h"

namespace brushwork {

bool StrokeFamily::beginStroke() {
    return brushwork::beginStroke(state_);
}

void StrokeFamily::addPoint(const StrokeInputPoint& point, bool) {
    addStrokePoint(state_, point);
}

void StrokeFamily::addPoints(std::span<const StrokeInputPoint> points) {
    for (const StrokeInputPoint& point : points) addStrokePoint(state_, point);
}

void StrokeFamily::endStroke() {
    brushwork::endStroke(state_);
}

void StrokeFamily::cancelStroke() {
    brushwork::cancelStroke(state_);
}

// The points run straight, whatever the brush's own path.
bool StrokeFamily::strokePolyline(std::span<const StrokePointData> points) {
    if (points.empty()) return false;
    const StrokeParameters kept = state_.brush.stroke;
    state_.brush.stroke.interpolationKind = 0;
    const bool begun = brushwork::beginStroke(state_);
    if (begun) {
        LiveStroke& stroke = state_.stroke;
        for (const StrokePointData& point : points)
            if (isPlace(point.x, point.y))
                stroke.renderer->addPoint(
                    npc::replayedPoint(point, stroke.stamps->parameters(), npc::ReplayValues{}));
        brushwork::endStroke(state_);
    }
    state_.brush.stroke = kept;
    return begun;
}

bool StrokeFamily::strokeLine(float x0, float y0, float x1, float y1, float pressure) {
    const StrokePointData points[] = {{x0, y0, pressure}, {x1, y1, pressure}};
    return strokePolyline(points);
}

bool StrokeFamily::inStroke() const {
    return state_.stroke.open;
}

ilTile StrokeFamily::strokeBounds() const {
    return state_.stroke.bounds;
}

}  // namespace brushwork
