#include "document/stack/stack_invalidate.h"

#include "document/layer/document_switches.h"
#include "document/layer/layer_boxes.h"
#include "document/stack/stack_lookup.h"
#include "foundation/host/host_canvas.h"

namespace brushwork::stack {
namespace {

bool hasSize(const ilTile& box) {
    return box.nx > 0 && box.ny > 0;
}

// A stencil shows in what it clips.
Layer& shownIn(Layer& layer) {
    return layer.isStencil() ? *layer.baseLayer() : layer;
}

// Where a layer stands: with the active one, or in which of the composites around that.
enum class Side { Active, Below, Above };

// With the selection active all of the list is below.
Side sideOf(const StackParts& stack, const Layer& layer) {
    const Layer* const changed = outermost(const_cast<Layer*>(&layer));
    const Layer* const active = outermost(stack.active.layer.get());
    if (changed == active) return Side::Active;
    if (changed == stack.selection.layer.get() || !active) return Side::Above;
    for (const Layer* step = active->next.get(); step; step = step->next.get())
        if (step == changed) return Side::Above;
    return Side::Below;
}

}  // namespace

void invalidateRect(StackParts& stack, const ilTile& box) {
    if (hasSize(box) && documentSwitches().compositeCacheEnabled) {
        // However far it reaches, only what the canvas shows is remembered.
        const ilTile flat = clippedToLimit(flatTile(box.x, box.y, box.nx, box.ny));
        stack.damage.tiles.addTile(stack.plane.image ? intersection(flat, stack.plane.canvasBounds)
                                                     : flat);
        stack.damage.dirty = unionOf(stack.damage.dirty, flat);
    }
    hostDirtyRect(activeOne, activeOne, hostBox(box));
}

void accumulateDirty(StackParts& stack, const ilTile& box, Layer& layer) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    ilTile placed = moved(clippedToLimit(flatTile(box.x, box.y, box.nx, box.ny)), x, y);
    layer.propagateChange(true, &placed);
    hostLayerDirtyRect(layer.id(), hostBox(placed));
    stack.damage.layers = unionOf(stack.damage.layers, placed);
    if (stack.plane.image) placed = intersection(placed, stack.plane.canvasBounds);
    stack.caches.whole.reset();
    if (layer.isStencil()) layer.markClipDirty(true);
    Layer& shown = shownIn(layer);
    stack.caches.groups.noteChange(outermost(&shown)->id());
    switch (sideOf(stack, shown)) {
        case Side::Below: stack.caches.belowTiles.addTile(placed); break;
        case Side::Above: stack.caches.aboveTiles.addTile(placed); break;
        case Side::Active: break;
    }
    invalidateRect(stack, placed);
}

void addPaintBounds(StackParts& stack, const ilTile& box) {
    stack.damage.paint = unionOf(stack.damage.paint, box);
}

// A composite of a run that holds the layer holds what stands around it at the top level.
void noteChange(StackParts& stack, Layer* layer) {
    ++stack.damage.generation;
    stack.caches.whole.reset();
    stack.scaled = ScaledPath();
    if (!layer) return;
    layer->dropView();
    stack.caches.groups.noteChange(outermost(layer)->id());
    stack.caches.groups.noteChange(outermost(&shownIn(*layer))->id());
    staleSide(stack, *layer);
}

void noteListChange(StackParts& stack) {
    ++stack.damage.generation;
    stack.caches.whole.reset();
    stack.scaled = ScaledPath();
    stack.active.indexCache = noLayer;
    staleBoth(stack);
}

void staleSide(StackParts& stack, const Layer& layer) {
    const Layer* const active = outermost(stack.active.layer.get());
    switch (sideOf(stack, shownIn(const_cast<Layer&>(layer)))) {
        case Side::Below:
            stack.caches.belowStale = true;
            // Masks above an active one belong to a layer below it, and show while that does.
            if (active && active->role() != LayerRole::Paint) stack.caches.aboveStale = true;
            break;
        case Side::Above: stack.caches.aboveStale = true; break;
        case Side::Active: {
            // Masks above it show while it does.
            const Layer* const above = active ? active->next.get() : nullptr;
            if (above && above->role() != LayerRole::Paint) stack.caches.aboveStale = true;
            break;
        }
    }
}

void staleBoth(StackParts& stack) {
    stack.caches.belowStale = true;
    stack.caches.aboveStale = true;
}

}  // namespace brushwork::stack
