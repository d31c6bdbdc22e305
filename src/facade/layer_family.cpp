#include "brushwork/layer_family.h"

#include <vector>

#include "document/layer/shape_layer.h"
#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"

namespace brushwork {
namespace {

LayerRole roleOf(std::int32_t role) {
    return role == 1 ? LayerRole::Mask : role == 2 ? LayerRole::Stencil : LayerRole::Paint;
}

// With the pixels of those layers that are meant.
template <class Meant>
auto recordsPixelsOf(FacadeState& state, const Meant& meant) {
    return [&state, meant](std::int32_t canvas) { recordStackWithLayers(state, canvas, meant); };
}

bool isAny(Layer&) {
    return true;
}

bool isShown(Layer& layer) {
    return layer.isVisibleInTree();
}

std::int32_t addRaster(FacadeState& state, const stack::NewLayer& wanted, bool record) {
    return guardedEdit(
        state, activeOne,
        [&](std::int32_t canvas) {
            if (record) recordStack(state, canvas, true);
        },
        [&](LayerStack& stack) { return stack.addLayer(wanted); });
}

std::int32_t canvasOf(const FacadeState& state, std::int32_t id) {
    std::int32_t canvas = noLayer;
    static_cast<void>(state.canvases.stackOfLayer(id, &canvas));
    return canvas;
}

std::int32_t step(FacadeState& state, std::int32_t by) {
    return guardedEdit(state, activeOne, [by](LayerStack& stack) {
        stack.setActiveIndex(stack.activeIndex(true) + by, false, false, true);
        return stack.activeId();
    });
}

}  // namespace

std::int32_t LayerFamily::newLayer(std::int32_t at, std::int32_t role, std::int32_t x,
                                   std::int32_t y, bool makeActive, bool record) {
    if (!isPlace(x, y)) return noLayer;
    stack::NewLayer wanted;
    wanted.at = at;
    wanted.role = roleOf(role);
    wanted.x = x;
    wanted.y = y;
    wanted.makeActive = makeActive;
    return addRaster(state_, wanted, record);
}

std::int32_t LayerFamily::newImageLayer(const ImageRef& image, std::int32_t x, std::int32_t y) {
    if (!image || !isPlace(x, y)) return noLayer;
    stack::NewLayer wanted;
    wanted.color = image.image();
    wanted.x = x;
    wanted.y = y;
    return addRaster(state_, wanted, true);
}

std::int32_t LayerFamily::newMaskLayer(bool stencil) {
    stack::NewLayer wanted;
    wanted.role = stencil ? LayerRole::Stencil : LayerRole::Mask;
    return addRaster(state_, wanted, true);
}

std::int32_t LayerFamily::newShapeLayer(std::int32_t at, std::int32_t kind) {
    stack::NewLayer wanted;
    wanted.at = at;
    wanted.shape = true;
    wanted.shapeKind = kind;
    return addRaster(state_, wanted, true);
}

std::int32_t LayerFamily::newGroup(const znString::IString& name, std::int32_t at) {
    return guardedEdit(state_, activeOne, recordsStack(state_),
                       [&](LayerStack& stack) { return stack.addGroup(name, at, true); });
}

bool LayerFamily::deleteLayer(std::int32_t id) {
    const std::int32_t ids[] = {id};
    return deleteLayers(ids);
}

bool LayerFamily::deleteLayers(std::span<const std::int32_t> ids, bool dryRun) {
    if (ids.empty()) return false;
    const std::int32_t canvas = canvasOf(state_, ids.front());
    LayerStack* const before = state_.stackAt(canvas);
    if (!before) return false;
    std::vector<std::int32_t> meant;
    for (const std::int32_t id : ids) meant.push_back(id == activeOne ? before->activeId() : id);
    if (dryRun || !before->canDelete(meant)) return before->canDelete(meant);
    return guardedEdit(
        state_, canvas, [&](std::int32_t index) { recordStackWithLayers(state_, index, meant); },
        [&](LayerStack& stack) { return stack.deleteLayers(meant, false, true); });
}

bool LayerFamily::clearLayers(std::int32_t canvas) {
    return guardedEdit(state_, canvas, recordsPixelsOf(state_, isAny), [](LayerStack& stack) {
        stack.clearLayers();
        return stack.addLayer({}) != noLayer;
    });
}

bool LayerFamily::flattenAll(std::int32_t canvas, bool visibleOnly) {
    const auto meant = visibleOnly ? isShown : isAny;
    return guardedEdit(state_, canvas, recordsPixelsOf(state_, meant), [&](LayerStack& stack) {
        static_cast<void>(stack.paintOps());
        const bool done = stack.flatten(visibleOnly);
        stack.refreshDisplay(true);
        return done;
    });
}

bool LayerFamily::mergeVisible(bool dryRun) {
    LayerStack* const before = state_.current();
    if (!before || !before->mergeVisible(true, noLayer, false)) return false;
    if (dryRun) return true;
    return guardedEdit(state_, activeOne, recordsPixelsOf(state_, isShown),
                       [](LayerStack& stack) { return stack.mergeVisible(false, noLayer, true); });
}

bool LayerFamily::mergeDown(std::int32_t id) {
    const std::int32_t canvas = canvasOf(state_, id);
    LayerStack* const before = state_.stackAt(canvas);
    Layer* const layer = before ? before->layerById(id) : nullptr;
    if (!layer) return false;
    Layer* below = layer->previous;
    while (below && layer->role() == LayerRole::Paint && below->role() != LayerRole::Paint)
        below = below->previous;
    if (!below || !stack::mergeable(before->parts(), layer->id(), below->id())) return false;
    const std::int32_t ids[] = {layer->id(), below->id()};
    return guardedEdit(
        state_, canvas, [&](std::int32_t index) { recordStackWithLayers(state_, index, ids); },
        [&](LayerStack& stack) { return stack.mergeDown(ids[0], ids[1]); });
}

bool LayerFamily::flattenGroup(std::int32_t id, bool dryRun) {
    const std::int32_t canvas = canvasOf(state_, id);
    LayerStack* const before = state_.stackAt(canvas);
    if (!before || !before->flattenGroup(id, true, noLayer, false)) return false;
    if (dryRun) return true;
    const std::int32_t meant = before->layerById(id)->id();
    const Ref<Layer> group(before->groupById(meant));
    const auto isMember = [group](Layer& layer) {
        return &layer != group.get() && stack::standsIn(&layer, *group);
    };
    return guardedEdit(state_, canvas, recordsPixelsOf(state_, isMember), [&](LayerStack& stack) {
        return stack.flattenGroup(meant, false, noLayer, true);
    });
}

bool LayerFamily::setActiveLayer(std::int32_t id) {
    const std::int32_t canvas = canvasOf(state_, id);
    return guardedEdit(state_, canvas, [&](LayerStack& stack) {
        const std::int32_t index = stack.indexOfId(id, true);
        if (index == noLayer) return false;
        stack.setActiveIndex(index, true, false, true);
        return true;
    });
}

std::int32_t LayerFamily::nextUp() {
    return step(state_, 1);
}

std::int32_t LayerFamily::nextDown() {
    return step(state_, -1);
}

}  // namespace brushwork
