#include "document/stack/stack_active.h"

#include <algorithm>

#include "document/stack/stack_caches.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_paint_mask.h"
#include "document/stack/stack_painters.h"
#include "document/stack/stack_transform.h"
#include "foundation/host/host_canvas.h"

namespace brushwork::stack {
namespace {

void hideOthers(StackParts& stack, Layer& kept) {
    static_cast<void>(eachLayer(stack.list, [&](Layer& layer) {
        const bool base = layer.role() == LayerRole::Paint;
        if (base && layer.visible() && !standsIn(&kept, layer) && !standsIn(&layer, kept))
            layer.setVisible(false);
        return true;
    }));
    if (!kept.visible()) kept.setVisible(true);
}

// A mask or stencil shows as a tint while it is worked on, and a live stroke goes with its layer.
bool showsWhileActive(const Layer* layer) {
    return layer && (layer->role() != LayerRole::Paint || layer->wet().image);
}

// Layers above the active one are flattened before they are laid over the rest, and so may round
// otherwise than one by one.
bool hasLayersAbove(const StackParts& stack) {
    const Layer* const outer = outermost(stack.active.layer.get());
    return outer && outer->next;
}

}  // namespace

void setActiveLayer(StackParts& stack, Layer* layer, bool refresh, bool force) {
    const Ref<Layer> former = stack.active.layer;
    if (former == layer && !force) return;
    const bool regroups = hasLayersAbove(stack) || stack.caches.above ||
                          showsWhileActive(former.get()) || showsWhileActive(layer);
    closeTransform(stack);
    // The painter of a fill that is still open aims at the former layer.
    stack.fill.end();
    if (former && former->wet().image) {
        former->clearWet();
        former->propagateChange(true);
        noteChange(stack, former.get());
    }
    stack.active.layer = Ref<Layer>(layer);
    stack.active.indexCache = noLayer;
    hostLayerListChanged(false);
    if (stack.active.hideOthers && layer && layer != stack.selection.layer.get()) {
        hideOthers(stack, *layer);
        stack.caches.groups.clear();
        invalidateRect(stack, stack.plane.canvasBounds);
    }
    staleBoth(stack);
    rebuildPaintMask(stack);
    canvasBounds(stack);
    if (layer) layer->markClipDirty(true);
    hostLayerListChanged(false);
    hostActiveLayerChanged();
    if (refresh) freshenCaches(stack);
    if (regroups || hasLayersAbove(stack) || stack.selection.active)
        invalidateRect(stack, stack.plane.canvasBounds);
}

void setActiveIndex(StackParts& stack, std::int32_t index, bool refresh, bool force, bool members) {
    if (index == activeOne) return setActiveLayer(stack, stack.active.layer.get(), refresh, force);
    const std::int32_t count = layerCountTotal(stack, members);
    index = std::clamp(index, 1, count + 1);
    setActiveLayer(stack, layerByIndex(stack, index, members), refresh, force);
}

}  // namespace brushwork::stack
