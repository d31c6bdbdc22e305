#include "brushwork/canvas_family.h"

#include <algorithm>
#include <cmath>

#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"
#include "foundation/host/host_canvas.h"

namespace brushwork {
namespace {

SampleMode filterOf(std::int32_t filter) {
    if (filter <= 0) return SampleMode::Nearest;
    return filter == 1 ? SampleMode::Bilinear : SampleMode::Bicubic;
}

constexpr std::int32_t mostPixels = 102400;

bool isSize(std::int32_t width, std::int32_t height) {
    return width > 0 && height > 0 && width <= mostPixels && height <= mostPixels;
}

std::int32_t open(FacadeState& state, const Ref<LayerStack>& stack) {
    const std::int32_t index = state.canvases.freeSlot();
    state.canvases.slots[static_cast<std::size_t>(index)] = stack;
    ++state.canvases.open;
    return index;
}

// All layers' pixels, in document coordinates.
ilTile contentOf(const LayerStack& stack) {
    ilTile all{0, 0, 0, 0, 0, 1};
    static_cast<void>(eachLayer(stack.parts().list, [&](Layer& layer) {
        if (layer.asGroup()) return true;
        layer.prepareForRender(nullptr, false);
        layer.tighten();
        ilTile box;
        layer.contentBounds(box, true);
        if (!box.isEmpty()) all = unionOf(all, box);
        return true;
    }));
    return all;
}

bool holdsShapes(const LayerStack& stack) {
    return !eachLayer(stack.parts().list, [](const Layer& layer) { return !layer.holdsShapes(); });
}

}  // namespace

std::int32_t CanvasFamily::newCanvas(std::int32_t width, std::int32_t height, std::intptr_t value1,
                                     std::intptr_t value2) {
    if (state_.stroke.open || !isSize(width, height)) return noLayer;
    if (LayerStack* const before = state_.current()) before->closeTransform();
    state_.modal.enter();
    const Ref<LayerStack> stack(new LayerStack(value1, value2, width, height));
    stack->parts().selection.mode = state_.selectionMode;
    const std::int32_t index = stack->imagePlane() ? open(state_, stack) : noLayer;
    if (index != noLayer) state_.makeCurrent(index);
    state_.modal.leave();
    state_.scheduleIdle();
    return index;
}

std::int32_t CanvasFamily::duplicateCanvas(std::int32_t canvas) {
    LayerStack* const stack = state_.stackAt(canvas);
    if (!stack || state_.stroke.open) return noLayer;
    stack->closeTransform();
    const Ref<LayerStack> copy(new LayerStack(*stack));
    StackParts& parts = copy->parts();
    parts.plane.canvas = nullptr;
    parts.plane.image.reset();
    parts.plane.ops.reset();
    const ilTile box = stack->canvasBounds();
    if (!parts.plane.makeOwn(box.nx, box.ny)) return noLayer;
    parts.isCurrent = false;
    stack::staleBoth(parts);
    copy->invalidateRect(box);
    return open(state_, copy);
}

bool CanvasFamily::scaleCanvas(std::int32_t canvas, float scale, std::int32_t filter) {
    LayerStack* const before = state_.stackAt(canvas);
    // The curves of shapes are the host's and would stay as they are.
    if (!before || holdsShapes(*before) || !(scale > 0.0f) || !std::isfinite(scale)) return false;
    const ilTile box = before->canvasBounds();
    const auto scaled = [&](std::int32_t size) {
        const double wanted = std::round(static_cast<double>(size) * scale);
        return wanted < 1.0 || wanted > mostPixels ? 0 : static_cast<std::int32_t>(wanted);
    };
    if (!isSize(scaled(box.nx), scaled(box.ny))) return false;
    return guardedEdit(
        state_, canvas, [&](std::int32_t index) { recordStack(state_, index, true); },
        [&](LayerStack& stack) {
            const Ref<LayerStack> from(new LayerStack(stack));
            if (!stack.canvas() && !stack.parts().plane.makeOwn(scaled(box.nx), scaled(box.ny)))
                return false;
            const bool done = stack.scaleFrom(*from, scale, filterOf(filter));
            stack.refreshDisplay(true);
            return done;
        });
}

bool CanvasFamily::closeCanvas(std::int32_t canvas) {
    const std::int32_t index = state_.canvases.resolve(canvas);
    LayerStack* const stack = state_.stackAt(index);
    if (!stack || state_.stroke.open) return false;
    const bool isCurrent = index == state_.canvases.current;
    stack->closeTransform();
    stack->endFill();
    if (isCurrent) recordStack(state_, index, true);
    hostLayerListChanged(true);
    Ref<LayerStack>& slot = state_.canvases.slots[static_cast<std::size_t>(index)];
    stack::stopSelectionTimer(slot->parts());
    slot.reset();
    if (isCurrent) state_.canvases.current = noLayer;
    --state_.canvases.open;
    return true;
}

std::int32_t CanvasFamily::currentCanvas() const {
    return state_.canvases.current;
}

bool CanvasFamily::setCurrentCanvas(std::int32_t canvas) {
    if (!state_.stackAt(canvas) || state_.stroke.open) return false;
    if (LayerStack* const before = state_.current()) before->closeTransform();
    state_.makeCurrent(state_.canvases.resolve(canvas));
    hostLayerListChanged(true);
    state_.scheduleIdle();
    return true;
}

std::int32_t CanvasFamily::canvasCount() const {
    return state_.canvases.open;
}

std::int32_t CanvasFamily::canvasCapacity() const {
    return state_.slotCount();
}

bool CanvasFamily::hasCanvas(std::int32_t canvas) const {
    return state_.stackAt(canvas) != nullptr;
}

void CanvasFamily::setView(std::int32_t canvas, const TransformRecord& view) {
    if (!isPlacement(view)) return;
    if (LayerStack* const stack = state_.stackAt(canvas)) stack->setView(view);
}

bool CanvasFamily::view(std::int32_t canvas, TransformRecord& view) const {
    const LayerStack* const stack = state_.stackAt(canvas);
    if (!stack) return false;
    view = stack->parts().view.record;
    return true;
}

void CanvasFamily::viewToLayer(float* x, float* y, std::int32_t layerId) const {
    const LayerStack* const stack = state_.canvases.stackOfLayer(layerId, nullptr);
    const LayerStack* const meant = stack ? stack : state_.current();
    if (!meant || !x || !y || !isPlace(*x, *y)) return;
    const ViewPoint place = meant->viewToLayer({*x, *y}, layerId);
    *x = place.x;
    *y = place.y;
}

void CanvasFamily::layerToView(float* x, float* y, std::int32_t layerId) const {
    const LayerStack* const stack = state_.canvases.stackOfLayer(layerId, nullptr);
    const LayerStack* const meant = stack ? stack : state_.current();
    if (!meant || !x || !y || !isPlace(*x, *y)) return;
    const ViewPoint place = meant->layerToView({*x, *y}, layerId);
    *x = place.x;
    *y = place.y;
}

bool CanvasFamily::setCanvasSize(std::int32_t canvas, std::int32_t width, std::int32_t height) {
    if (!isSize(width, height)) return false;
    return guardedEdit(state_, canvas, [&](LayerStack& stack) {
        if (stack.canvas()) return false;
        stack.resizePlane(width, height);
        const ilTile now = stack.canvasBounds();
        stack.present();
        return now.nx == width && now.ny == height;
    });
}

bool CanvasFamily::resizeToFit(std::int32_t canvas) {
    LayerStack* const before = state_.stackAt(canvas);
    if (!before || before->canvas() || state_.stroke.open) return false;
    before->closeTransform();
    const ilTile all = contentOf(*before);
    if (all.isEmpty() || !isSize(all.nx, all.ny)) return false;
    return guardedEdit(
        state_, canvas, [&](std::int32_t index) { recordStack(state_, index, true); },
        [&](LayerStack& stack) {
            // The content's corner becomes the canvas': layers move by as much the other way.
            stack.absorbOrigin();
            stack.parts().plane.originX = -all.x;
            stack.parts().plane.originY = -all.y;
            stack.absorbOrigin();
            stack.resizePlane(all.nx, all.ny);
            stack.refreshDisplay(true);
            return true;
        });
}

ilTile CanvasFamily::canvasBounds(std::int32_t canvas) const {
    LayerStack* const stack = state_.stackAt(canvas);
    return stack ? stack->canvasBounds() : ilTile();
}

void CanvasFamily::present(std::int32_t canvas) {
    if (LayerStack* const stack = state_.stackAt(canvas)) stack->present();
}

bool CanvasFamily::readCanvas(std::int32_t canvas, void* pixels) {
    LayerStack* const stack = state_.stackAt(canvas);
    if (!stack || !pixels || !stack->imagePlane()) return false;
    stack->present();
    const ilTile box = stack->imagePlane()->box();
    return stack->imagePlane()->readRegion(box, pixels, box) == ImageOk;
}

bool CanvasFamily::readFlatImage(std::int32_t canvas, void* pixels) {
    LayerStack* const stack = state_.stackAt(canvas);
    if (!stack || !pixels) return false;
    const Ref<ilSPMemoryImg> flat = stack->flatImage();
    return flat && flat->readRegion(flat->box(), pixels, flat->box()) == ImageOk;
}

void CanvasFamily::refreshDisplay(std::int32_t canvas) {
    if (LayerStack* const stack = state_.stackAt(canvas)) stack->refreshDisplay(true);
}

}  // namespace brushwork
