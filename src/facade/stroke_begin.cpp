#include "facade/stroke_begin.h"

#include <algorithm>

#include "facade/color_jitter.h"
#include "facade/stroke_coverage.h"
#include "facade/stroke_points.h"
#include "facade/stroke_source.h"
#include "facade/stroke_target.h"
#include "facade/undo_filing.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/stroke/symmetry_stroke_renderer.h"

namespace brushwork {
namespace {

bool isPaintable(LayerStack& stack, Layer* layer) {
    if (!layer || layer->holdsShapes() || layer->asGroup() || layer->locked()) return false;
    return layer == stack.selectionLayer() || layer->isVisibleInTree();
}

bool canBegin(const FacadeState& state) {
    LayerStack* const stack = state.current();
    return stack && !state.stroke.open && isPaintable(*stack, stack->activeLayer());
}

std::optional<SymmetrySetup> setupOf(const FacadeState& state, Layer& layer) {
    if (!state.brush.symmetry) return std::nullopt;
    const Symmetry& symmetry = *state.brush.symmetry;
    return symmetrySetup(symmetry, symmetry.centerX() - static_cast<float>(layer.offsetXInt()),
                         symmetry.centerY() - static_cast<float>(layer.offsetYInt()));
}

bool isSixteenBit(BlendModeId mode) {
    return mode != BlendModeId::Normal && mode != BlendModeId::Replace &&
           mode != BlendModeId::Clear;
}

void makeRenderer(FacadeState& state, Layer& layer, ilSmartImage& target) {
    LiveStroke& stroke = state.stroke;
    const bool gray = stroke.gray.coverage != nullptr;
    const BrushParameters brush = brushFor(state.brush, gray);
    StrokeParameters parameters = state.brush.stroke;
    parameters.spacing = std::max(parameters.spacing, 0.1f);
    stroke.low.reset();
    if (isSixteenBit(npc::brushModeOf(parameters, brush).mode))
        stroke.low = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
    if (!stroke.stamps)
        stroke.stamps = std::make_shared<npc::StampRenderer>(&target, stroke.low.get());
    else
        stroke.stamps->setTargets(&target, stroke.low.get());
    stroke.stamps->setLockAlpha(state.brush.lockAlpha != 0 && !stroke.wet);
    const std::optional<SymmetrySetup> setup = setupOf(state, layer);
    stroke.symmetric = setup.has_value();
    if (setup) {
        auto renderer = std::make_shared<npc::SymmetryStrokeRenderer>(stroke.stamps);
        renderer->setSymmetry(*setup);
        renderer->setSeparateRenderers(state.brush.symmetry->separateRenderers());
        stroke.renderer = renderer;
    } else {
        stroke.renderer = std::make_shared<npc::StrokeRenderer>(stroke.stamps);
        if (!stroke.path) stroke.path = std::make_shared<npc::StrokeInterpolator>();
        stroke.renderer->setInterpolator(stroke.path);
    }
    stroke.renderer->setParameters(parameters, &brush);
}

// What the stroke touches, in layer pixels.
void listen(FacadeState& state) {
    state.stroke.renderer->setTileCallback([&state](const ilTile& touched) {
        LiveStroke& stroke = state.stroke;
        layCoverage(stroke, touched);
        stroke.dirty = unionOf(stroke.dirty, touched);
        stroke.bounds = unionOf(stroke.bounds, touched);
        stroke.stack->addPaintBounds(touched);
        stroke.stack->accumulateDirty(touched, *stroke.layer);
        if (stroke.resting) showResting(state);
    });
}

// There is nothing to paint into.
void giveUp(FacadeState& state) {
    LiveStroke& stroke = state.stroke;
    restoreColor(state.brush);
    stroke.record.reset();
    stroke.stack->setPaintOnStencil(false);
    stroke.layer.reset();
    stroke.stack.reset();
    if (const auto hook = state.brush.strokeEndHook) hook();
    state.scheduleIdle();
}

}  // namespace

bool beginStroke(FacadeState& state) {
    LiveStroke& stroke = state.stroke;
    if (!canBegin(state)) return false;
    state.current()->closeTransform();
    state.current()->endFill();
    // It may set another hook, and another layer.
    if (const auto hook = state.brush.strokeStartHook) hook();
    if (!canBegin(state)) return false;
    LayerStack* const stack = state.current();
    Layer& layer = *stack->activeLayer();
    stroke.stack = Ref<LayerStack>(stack);
    stroke.layer = Ref<Layer>(&layer);
    stroke.pointBudget = LiveStroke::pointsBetweenUpdates;
    stroke.dirty = stroke.bounds = emptyTile;
    stroke.onStencil = state.brush.paintsOnStencil();
    stack->setPaintOnStencil(stroke.onStencil);
    jitterColor(state.brush);
    stroke.record = recordLayer(state, activeOne, layer.id(), false);
    static_cast<void>(stack->paintOps());
    ilSmartImage* const target = openTarget(state, *stack, layer);
    if (!target) {
        giveUp(state);
        return false;
    }
    stroke.before.reset();
    if (!stroke.record && !stroke.wet)
        stroke.before = stroke.gray.coverage ? stroke.gray.ground : target->clone();
    makeRenderer(state, layer, *target);
    openSource(state, *stack, layer, *stroke.stamps);
    stroke.renderer->setKeepSource(stroke.stamps->source().isGiven());
    if (state.brush.texture) state.brush.texture->drawOffset();
    listen(state);
    stroke.resting = false;
    // Only now: making the record scheduled it.
    state.idle.cancel();
    stroke.open = true;
    stroke.renderer->beginStroke(false);
    return true;
}

}  // namespace brushwork
