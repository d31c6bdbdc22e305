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

void update(FacadeState& state, float pressure) {
    LiveStroke& stroke = state.stroke;
    --stroke.pointBudget;
    const std::int32_t threshold = showsAbove(stroke.symmetric, pressure);
    if (stroke.dirty.nx > threshold || stroke.dirty.ny > threshold) {
        if (state.brush.displayUpdates) stroke.stack->present();
    } else if (stroke.pointBudget <= 0) {
        hostFlushCanvas(stroke.stack->canvas());
        if (state.brush.displayUpdates) stroke.stack->present();
    } else {
        return;
    }
    drawMarks(stroke);
    stroke.pointBudget = LiveStroke::pointsBetweenUpdates;
    stroke.dirty = emptyTile;
}

}  // namespace

void addStrokePoint(FacadeState& state, const StrokeInputPoint& point) {
    LiveStroke& stroke = state.stroke;
    if (!stroke.open || !isPlace(point.x, point.y)) return;
    const float pressure = point.pressure >= leastPressure ? point.pressure : leastPressure;
    const ViewPoint place = stroke.stack->viewToLayer({point.x, point.y}, stroke.layer->id());
    if (!isPlace(place.x, place.y)) return;
    const StrokePointData data(place.x, place.y, pressure);
    stroke.renderer->addPoint(
        npc::replayedPoint(data, stroke.stamps->parameters(), npc::ReplayValues{}));
    update(state, pressure);
    markPoint(state, place);
}

}  // namespace brushwork
