#include "document/stack/stack_caches.h"

#include <algorithm>
#include <vector>

#include "blending/paint/soft_paint_ops.h"
#include "document/stack/blend_run.h"
#include "document/stack/stack_draw.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_paint_mask.h"

namespace brushwork::stack {
namespace {

Ref<ilSmartImage> filledImage(std::uint32_t pixel) {
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4, &pixel)));
}

LayerDraw wholeCanvas(const StackParts& stack) {
    LayerDraw draw;
    draw.box = stack.plane.canvasBounds;
    draw.refreshThumbnail = stack.damage.thumbnailsWanted;
    return draw;
}

bool transparentGround(const StackParts& stack) {
    return stack.display.checkerboard && stack.plane.surfaceIsTransparent();
}

std::vector<Layer*> layersBelow(const StackParts& stack) {
    std::vector<Layer*> layers;
    Layer* const active = outermost(stack.active.layer.get());
    if (!active || active == stack.selection.layer.get()) {
        for (Layer* layer = stack.list.first.get(); layer; layer = layer->next.get())
            layers.push_back(layer);
        return layers;
    }
    for (Layer* layer = stack.list.first.get(); layer && layer != active; layer = layer->next.get())
        layers.push_back(layer);
    return layers;
}

std::uint32_t groundOf(const StackParts& stack) {
    return transparentGround(stack) ? 0 : backgroundPixel(stack);
}

// Draws again in the tiles, on what is filled there with the pixel.
void patch(StackParts& stack, ilSmartImage& image, const ilPageTileManager& tiles,
           std::uint32_t ground, const std::vector<Layer*>& layers) {
    for (const ilTile& tile : tilesOf(tiles, stack.plane.canvasBounds))
        image.fillRegion(tile, ilPixel(TypeUChar, 4, &ground));
    const Ref<SoftPaintOps> painter(new SoftPaintOps(&image));
    LayerDraw draw = wholeCanvas(stack);
    draw.tiles = &tiles;
    drawLayers(stack, layers, *painter, draw);
}

std::vector<Layer*> drawnAbove(const StackParts& stack, bool withSelection) {
    std::vector<Layer*> layers;
    for (Layer* layer = firstAbove(stack); layer; layer = layer->next.get())
        if (isDrawnAbove(stack, *layer, withSelection)) layers.push_back(layer);
    if (showsSelection(stack, withSelection)) layers.push_back(stack.selection.layer.get());
    return layers;
}

}  // namespace

Layer* firstAbove(const StackParts& stack) {
    Layer* const active = outermost(stack.active.layer.get());
    if (!active || active == stack.selection.layer.get()) return nullptr;
    return active->next.get();
}

bool isDrawnAbove(const StackParts& stack, Layer& layer, bool withSelection) {
    if (!layer.visible() || !(layer.opacity() > invisibleEnough) || layer.isStencil()) return false;
    if (!layer.isMask()) return true;
    return withSelection && !stack.selection.active && layer.baseLayer()->isVisibleInTree();
}

bool showsSelection(const StackParts& stack, bool withSelection) {
    const SelectionState& selection = stack.selection;
    return withSelection && selection.active && selection.mode == 0 && selection.layer->visible() &&
           selection.layer->opacity() > invisibleEnough && selection.layer->blendMode() == 0;
}

void rebuildBelow(StackParts& stack, Ref<ilSmartImage>& out, const BelowStep& step) {
    if (stack.damage.lockCount > 0) return;
    out.reset();
    const std::vector<Layer*> layers = layersBelow(stack);
    if (layers.empty()) return;
    std::vector<std::int32_t> ids;
    for (const Layer* layer : layers) ids.push_back(layer->id());
    if (stack.transform.open) stack.caches.groups.clear();
    const std::uint32_t ground = groundOf(stack);
    GroupCache::Found found = stack.caches.groups.find(ground, ids);
    Ref<ilSmartImage> image;
    if (found.image) {
        image = found.image->clone();
    } else {
        image = filledImage(ground);
        image->fillRegion(stack.plane.canvasBounds, image->fill());
    }
    if (!image) return;
    const Ref<SoftPaintOps> painter(new SoftPaintOps(image.get()));
    painter->setBlendFactors(pairOver.source, pairOver.target);
    std::vector<Layer*> shown;
    for (std::size_t n = found.length; n < layers.size(); ++n)
        if (layers[n]->isDrawable()) shown.push_back(layers[n]);
    LayerDraw draw = wholeCanvas(stack);
    if (step) draw.blockDone = [&](const ilTile& block) { step(*image, block); };
    const bool drawn = drawLayers(stack, shown, *painter, draw) || found.length > 0;
    if (!stack.transform.open && found.length < layers.size())
        stack.caches.groups.store(ground, ids, *image);
    if (!drawn) return;
    image->shrinkToPages();
    out = image;
}

void refreshBelow(StackParts& stack, const BelowStep& step) {
    rebuildBelow(stack, stack.caches.below, step);
    if (stack.damage.lockCount > 0) return;
    stack.caches.belowStale = false;
    stack.caches.belowTiles.clear();
}

void rebuildAbove(StackParts& stack, Ref<ilSmartImage>& out, bool withSelection, bool refreshMask) {
    if (stack.damage.lockCount > 0) return;
    Layer* const active = stack.active.layer.get();
    stack.selection.active = hasSelection(stack) && stack.selection.layer.get() != active;
    if (!active) {
        rebuildPaintMask(stack);
        return;
    }
    out.reset();
    bool simple = true;
    for (Layer* layer = firstAbove(stack); layer; layer = layer->next.get())
        simple = simple && layer->blendMode() == 0;
    stack.caches.aboveIsSimple = simple;
    if (simple) {
        const Ref<ilSmartImage> image = filledImage(0);
        const Ref<SoftPaintOps> painter(new SoftPaintOps(image.get()));
        painter->setBlendFactors(pairOver.source, pairOver.target);
        if (drawLayers(stack, drawnAbove(stack, withSelection), *painter, wholeCanvas(stack)))
            out = image;
    }
    if (refreshMask) rebuildPaintMask(stack);
}

void refreshAbove(StackParts& stack, bool refreshMask) {
    rebuildAbove(stack, stack.caches.above, true, refreshMask);
    if (stack.damage.lockCount > 0) return;
    stack.caches.aboveStale = false;
    stack.caches.aboveTiles.clear();
}

void freshenCaches(StackParts& stack, const BelowStep& step) {
    if (stack.damage.lockCount > 0) return;
    CompositeCaches& caches = stack.caches;
    if (caches.aboveStale ||
        (!caches.aboveTiles.isEmpty() && caches.aboveIsSimple && !caches.above))
        refreshAbove(stack, false);
    if (caches.above && !caches.aboveTiles.isEmpty())
        patch(stack, *caches.above, caches.aboveTiles, 0, drawnAbove(stack, true));
    caches.aboveTiles.clear();
    if (caches.belowStale || (!caches.belowTiles.isEmpty() && !caches.below))
        refreshBelow(stack, step);
    if (!caches.belowTiles.isEmpty()) {
        std::vector<Layer*> layers = layersBelow(stack);
        std::erase_if(layers, [](Layer* layer) { return !layer->isDrawable(); });
        patch(stack, *caches.below, caches.belowTiles, groundOf(stack), layers);
    }
    caches.belowTiles.clear();
}

}  // namespace brushwork::stack
