#include "document/stack/stack_delete.h"

#include <algorithm>
#include <vector>

#include "document/stack/stack_active.h"
#include "document/stack/stack_display.h"
#include "document/stack/stack_insert.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_painters.h"
#include "document/stack/stack_raster.h"
#include "document/stack/stack_transform.h"
#include "foundation/host/host_canvas.h"

namespace brushwork::stack {
namespace {

// The top member of a group, of a group in it, and so on; the group itself if it is empty.
Layer* innermostTop(Layer* layer) {
    while (layer && layer->asGroup() && layer->asGroup()->lastChild())
        layer = layer->asGroup()->lastChild();
    return layer;
}

// The last paint layer or group at the top level.
bool isOnlyLayer(const StackParts& stack, const Layer& layer) {
    if (layer.parent || isAttached(&layer)) return false;
    for (const Layer* step = stack.list.first.get(); step; step = step->next.get())
        if (step != &layer && !isAttached(step)) return false;
    return true;
}

void makeBlank(StackParts& stack, Layer& layer) {
    layer.clearStencil();
    layer.setTextObject(nullptr);
    if (ilSmartImage* const image = layer.smartColor()) blankOut(*image);
    layer.touch();
    layer.propagateChange(true);
    noteChange(stack, &layer);
    invalidateRect(stack, stack.plane.canvasBounds);
}

}  // namespace

Layer* successorOf(const StackParts& stack, const Layer& layer) {
    if (layer.previous) return innermostTop(layer.previous);
    if (layer.next) return innermostTop(layer.next.get());
    if (layer.parent) return &layer.parent->asLayer();
    return stack.selection.layer.get();
}

void deleteLayer(StackParts& stack, Layer& layer) {
    const Ref<Layer> held(&layer);
    if (&layer == stack.selection.layer.get()) return;
    closeTransform(stack);
    if (stack.fill.layer && standsIn(stack.fill.layer.get(), layer)) stack.fill.end();
    if (!isAttached(&layer))
        while (isAttached(layer.next.get())) deleteLayer(stack, *Ref<Layer>(layer.next));
    if (isOnlyLayer(stack, layer)) {
        if (rasterOf(&layer)) return makeBlank(stack, layer);
        // A document is never without a layer to paint on.
        NewLayer fresh;
        fresh.at = indexOf(stack, &layer, true);
        fresh.render = false;
        addLayer(stack, fresh);
    }
    const bool wasActive = standsIn(stack.active.layer.get(), layer);
    Layer* const successor = wasActive ? successorOf(stack, layer) : nullptr;
    unlinkLayer(stack, layer);
    if (wasActive) setActiveLayer(stack, successor, false, true);
    hostLayerListChanged(false);
    paintOps(stack);
    canvasBounds(stack);
}

bool canDelete(const StackParts& stack, std::span<const std::int32_t> ids) {
    return !ids.empty() && std::all_of(ids.begin(), ids.end(), [&](std::int32_t id) {
        const Layer* const layer = layerById(stack, id);
        return layer && layer != stack.selection.layer.get();
    });
}

bool deleteLayers(StackParts& stack, std::span<const std::int32_t> ids, bool dryRun,
                  bool presentIt) {
    if (!canDelete(stack, ids)) return false;
    if (dryRun) return true;
    closeTransform(stack);
    // From the top, since a paint layer takes what is attached to it along.
    std::vector<std::int32_t> order;
    for (const Layer* layer : normalizeIds(stack, ids)) order.push_back(layer->id());
    for (auto id = order.rbegin(); id != order.rend(); ++id)
        if (Layer* const layer = layerById(stack, *id)) deleteLayer(stack, *layer);
    if (presentIt) refreshDisplay(stack, false);
    return true;
}

void clearLayers(StackParts& stack) {
    closeTransform(stack);
    setActiveLayer(stack, nullptr, false, true);
    stack.list.clear();
    stack.caches.groups.clear();
    stack.caches.above.reset();
    stack.caches.below.reset();
    noteListChange(stack);
    invalidateRect(stack, stack.plane.canvasBounds);
    hostLayerListChanged(false);
}

}  // namespace brushwork::stack
