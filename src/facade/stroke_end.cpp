#include "facade/stroke_end.h"

#include <utility>

#include "facade/color_jitter.h"
#include "facade/paint_marks.h"
#include "facade/stroke_source.h"
#include "facade/undo_filing.h"

namespace brushwork {
namespace {

// The selection counts anew when it was painted on; so does what masks leave free.
void pixelsChanged(LiveStroke& stroke) {
    StackParts& parts = stroke.stack->parts();
    stroke.layer->touch();
    stroke.stack->noteChange(stroke.layer.get());
    stack::staleSide(parts, *stroke.layer);
    if (stroke.layer == stroke.stack->selectionLayer())
        stack::selectionChanged(parts);
    else if (stroke.layer->role() != LayerRole::Paint)
        stroke.layer->markClipDirty(true);
    if (!stroke.bounds.isEmpty()) stroke.stack->accumulateDirty(stroke.bounds, *stroke.layer);
}

void finish(FacadeState& state) {
    LiveStroke& stroke = state.stroke;
    stroke.layer->clearWet();
    restoreColor(state.brush);
    pixelsChanged(stroke);
    if (state.brush.displayUpdates) stroke.stack->present();
    drawMarks(stroke);
    stroke.marks.clear();
    fileRecord(std::exchange(stroke.record, Ref<PntUndoStroke>()).get());
    stroke.stack->setPaintOnStencil(false);
    stroke.open = false;
    stroke.low.reset();
    stroke.before.reset();
    stroke.gray = GrayStroke();
    const bool staysWet =
        keepsItsPaint(*stroke.renderer->parameters(), stroke.stamps->parameters());
    stroke.renderer.reset();
    if (stroke.path) stroke.path->begin(nullptr);
    // The renderer holds on to no pages of the layer.
    stroke.stamps->setTargets(nullptr, nullptr);
    if (!staysWet) stroke.stamps->setSource(nullptr, nullptr, false, 0, 0);
    stroke.layer.reset();
    stroke.stack.reset();
    if (const auto hook = state.brush.strokeEndHook) hook();
    state.scheduleIdle();
    state.scheduleIdleAfterStroke();
}

}  // namespace

void endStroke(FacadeState& state) {
    LiveStroke& stroke = state.stroke;
    if (!stroke.open) return;
    stroke.resting = false;
    stroke.renderer->endStroke();
    // A wet image over the canvas shows all of it; only what the stroke touched is committed.
    if (ilSmartImage* const wet = ilSmartImage::from(stroke.layer->wet().image.get()))
        wet->setBounds(stroke.bounds, true);
    if (stroke.wet && !stroke.bounds.isEmpty())
        stroke.layer->commitWet(stroke.onStencil ? stroke.layer->stencilImage() : nullptr);
    finish(state);
}

void cancelStroke(FacadeState& state) {
    LiveStroke& stroke = state.stroke;
    if (!stroke.open) return;
    stroke.resting = false;
    stroke.renderer->endStroke();
    stroke.layer->clearWet();
    if (stroke.record) {
        bool deferred = false;
        float x = 0.0f;
        float y = 0.0f;
        stroke.layer->offset(&x, &y);
        stroke.record->undo(&deferred);
        stroke.layer->setOffset(x, y);
        stroke.record.reset();
    } else if (stroke.before && !stroke.bounds.isEmpty()) {
        ilSmartImage* const image =
            stroke.onStencil ? stroke.layer->smartStencil() : stroke.layer->smartColor();
        image->copyRegion(stroke.bounds, *stroke.before, stroke.bounds.x, stroke.bounds.y, 0,
                          nullptr, CopyDirection::FromOther);
    }
    finish(state);
}

}  // namespace brushwork
