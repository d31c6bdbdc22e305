#include "facade/stroke_points.h"

#include <algorithm>

#include "facade/input_limits.h"
#include "facade/paint_marks.h"
#include "foundation/host/host_canvas.h"
#include "strokes/stroke/stroke_replay.h"

namespace brushwork {
namespace {

constexpr float leastPressure = 0.01f;

// Above this size of what changed the canvas is shown at once.
std::int32_t showsAbove(bool symmetric, float pressure) {
    if (symmetric) return 0x19000;
    return 128 + static_cast<std::int32_t>(384.0f * std::clamp(pressure / 256.0f, 0.0f, 1.0f));
}

void update(FacadeState& state, std::int32_t threshold) {
    LiveStroke& stroke = state.stroke;
    --stroke.pointBudget;
    const bool isLarge = stroke.dirty.nx > threshold || stroke.dirty.ny > threshold;
    if (!isLarge && stroke.pointBudget > 0) return;
    if (state.brush.displayUpdates) stroke.stack->present();
    if (!isLarge) hostFlushCanvas(stroke.stack->canvas());
    drawMarks(stroke);
    stroke.pointBudget = LiveStroke::pointsBetweenUpdates;
    stroke.dirty = emptyTile;
}

}  // namespace

void showResting(FacadeState& state) {
    update(state, showsAbove(true, 0.0f));
}

void addStrokePoint(FacadeState& state, const StrokeInputPoint& point) {
    LiveStroke& stroke = state.stroke;
    if (!stroke.open || !isPlace(point.x, point.y)) return;
    const float pressure = point.pressure >= leastPressure ? point.pressure : leastPressure;
    const ViewPoint place = stroke.stack->viewToLayer({point.x, point.y}, stroke.layer->id());
    if (!isPlace(place.x, place.y)) return;
    const StrokePointData data(place.x, place.y, pressure);
    stroke.resting = false;
    stroke.renderer->addPoint(
        npc::replayedPoint(data, stroke.stamps->parameters(), npc::ReplayValues{}));
    stroke.resting = true;
    update(state, showsAbove(stroke.symmetric, pressure));
    markPoint(state, place);
}

}  // namespace brushwork
