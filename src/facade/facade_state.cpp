#include "facade/facade_state.h"

#include <algorithm>

#include "document/layer/shape_layer.h"
#include "foundation/host/host_canvas.h"
#include "image/cache/smart_image_cache.h"

namespace brushwork {

FacadeState::FacadeState()
    : idle([this] {
          SmartImageCache::instance().idleStep();
          if (LayerStack* const stack = current(); stack && !stroke.open) stack->freshenCaches();
      }) {}

FacadeState::~FacadeState() {
    idle.cancel();
}

LayerStack* FacadeState::stackAt(std::int32_t canvas) const {
    return canvases.stackAt(canvas);
}

Layer* FacadeState::layerById(std::int32_t id) const {
    const LayerStack* const stack = stackOfLayer(id);
    return stack ? stack->layerById(id) : nullptr;
}

std::int32_t FacadeState::slotCount() const {
    return static_cast<std::int32_t>(canvases.slots.size());
}

void FacadeState::makeCurrent(std::int32_t canvas) {
    if (LayerStack* const before = current()) before->parts().isCurrent = false;
    canvases.current = stackAt(canvas) ? canvas : noLayer;
    if (LayerStack* const now = current()) now->parts().isCurrent = true;
}

// Handle, pixels and view of the canvas go over to the stack that now stands in its slot.
void FacadeState::takeOver(StackParts& to, LayerStack& former) const {
    StackParts& from = former.parts();
    stack::endFill(from);
    to.plane.canvas = from.plane.canvas;
    to.plane.image = from.plane.image;
    to.plane.ops = from.plane.ops;
    // A plane of the engine's own has the size that the document had.
    const ilTile size = to.plane.canvasBounds;
    to.plane.refreshBounds();
    if (!to.plane.canvas && !size.isEmpty() &&
        (size.nx != to.plane.canvasBounds.nx || size.ny != to.plane.canvasBounds.ny))
        to.plane.makeOwn(size.nx, size.ny);
    to.view = from.view;
    to.view.changed = true;
    to.selection.mode = from.selection.mode;
    to.damage.generation = from.damage.generation + 1;
    from.plane.canvas = nullptr;
    from.plane.image.reset();
    from.plane.ops.reset();
    from.isCurrent = false;
    stack::stopSelectionTimer(from);
    // A stack that was shown here, too, is still shown in its own slot.
    if (std::find(canvases.slots.begin(), canvases.slots.end(), &former) != canvases.slots.end())
        reopen(from);
}

// A stack without pixels to show itself on gets some of its own, as large as those it had.
void FacadeState::reopen(StackParts& to) {
    const ilTile size = to.plane.canvasBounds;
    if (!to.plane.image) to.plane.makeOwn(size.nx, size.ny);
    to.view.changed = true;
    ++to.damage.generation;
    stack::staleBoth(to);
    stack::invalidateRect(to, to.plane.canvasBounds);
}

void FacadeState::replaceStack(LayerStack& stack, std::int32_t canvas) {
    canvas = canvases.resolve(canvas);
    if (canvas < 0 || canvas >= slotCount()) return;
    modal.enter();
    Ref<LayerStack>& slot = canvases.slots[static_cast<std::size_t>(canvas)];
    const Ref<LayerStack> former = slot;
    slot = Ref<LayerStack>(&stack);
    if (!former) ++canvases.open;
    if (former != &stack) {
        StackParts& to = stack.parts();
        if (former)
            takeOver(to, *former);
        else
            reopen(to);
        to.isCurrent = canvas == canvases.current;
        stack::startSelectionTimer(to);
        // What the copy shows may differ in every pixel.
        stack::staleBoth(to);
        to.caches.groups.clear();
        stack.invalidateRect(stack.canvasBounds());
        stack.rebuildPaintMask();
    }
    hostLayerListChanged(true);
    modal.leave();
}

// Copies of a canvas have shapes of equal ids, which mean those of the one in front.
bool FacadeState::locateShape(std::int32_t shapeId, ShapePlace& place) const {
    if (locateIn(canvases.current, shapeId, place)) return true;
    for (std::int32_t canvas = 0; canvas < slotCount(); ++canvas)
        if (canvas != canvases.current && locateIn(canvas, shapeId, place)) return true;
    return false;
}

bool FacadeState::locateIn(std::int32_t canvas, std::int32_t shapeId, ShapePlace& place) const {
    LayerStack* const stack = stackAt(canvas);
    if (!stack) return false;
    return !eachLayer(stack->parts().list, [&](Layer& layer) {
        ShapeLayer* const shapes = ShapeLayer::from(&layer);
        Shape* const shape = shapes ? shapes->shapeById(shapeId) : nullptr;
        if (!shape) return true;
        place = {canvas, stack->indexOf(&layer, true), shapes->placeOf(*shape), stack, shapes,
                 shape};
        return false;
    });
}

void FacadeState::scheduleIdle() {
    LayerStack* const stack = current();
    if (stack) stack->parts().caches.whole.reset();
    hostUiRefresh();
    idle.cancel();
    if (!stroke.open && !(stack && stack->inTransform())) idle.restart(IdleWork::afterEdit);
}

void FacadeState::scheduleIdleAfterStroke() {
    if (idle.isPending()) idle.restart(IdleWork::afterStroke);
}

}  // namespace brushwork
