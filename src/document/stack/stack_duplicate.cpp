#include "document/stack/stack_duplicate.h"

#include "document/stack/stack_active.h"
#include "document/stack/stack_insert.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_raster.h"
#include "document/stack/stack_selection.h"
#include "document/stack/stack_transform.h"

namespace brushwork::stack {
namespace {

// By the paint mask.
void cutByMask(const StackParts& stack, Layer& layer, ilSmartImage& image, BlendFactors factors) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    cutBy(image, *stack.selection.paintMask, x, y, factors);
}

// The id is still the layer's; it gets one of its own as it enters the list. Shapes have theirs.
Ref<Layer> copyOf(StackParts& stack, Layer& layer, bool masked) {
    Ref<Layer> copy = layer.holdsShapes() ? layer.clone() : layer.duplicate();
    if (!copy) return {};
    copy->setName(uniqueName(stack, layer.name()));
    ilSmartImage* const image = rasterOf(copy.get());
    if (masked && image && stack.selection.active && stack.selection.paintMask)
        cutByMask(stack, layer, *image, pairKeepInside);
    return copy;
}

// With its own images of the same pages; the attributes of the layer, but not its name.
Ref<Layer> temporaryLike(Layer& layer, ilSmartImage& pixels) {
    const Ref<ilSmartImage> stencil =
        layer.smartStencil() ? layer.smartStencil()->clone() : Ref<ilSmartImage>();
    float x = 0.0f;
    float y = 0.0f;
    layer.offset(&x, &y);
    Ref<Layer> copy(new Layer(&pixels, stencil.get(), layer.role(), layer.flags(), x, y,
                              znString::IString(u"_______Temporary_Layer_______")));
    copy->setOpacity(layer.opacity());
    copy->setBlendMode(layer.blendMode());
    copy->setOverlayColor(layer.overlayColor());
    copy->setOverlayOpacity(layer.overlayOpacity());
    layer.pivot(&x, &y);
    copy->setPivot(x, y, layer.pivotSet());
    return copy;
}

}  // namespace

std::int32_t duplicateLayer(StackParts& stack) {
    Layer* const layer = stack.active.layer.get();
    if (!layer || layer == stack.selection.layer.get()) return noLayer;
    closeTransform(stack);
    const Ref<Layer> copy = copyOf(stack, *layer, true);
    if (!copy) return noLayer;
    insertAbove(stack, *copy, LayerChain::pastAttached(layer, *copy), groupAround(layer));
    setActiveLayer(stack, copy.get(), false, false);
    return copy->id();
}

bool duplicateLayers(StackParts& stack, std::span<const std::int32_t> ids,
                     std::vector<std::int32_t>& newIds) {
    newIds.clear();
    const std::vector<Layer*> layers = normalizeIds(stack, ids);
    if (layers.empty()) return false;
    closeTransform(stack);
    Layer* below = layers.back();
    LayerGroup* const group = groupAround(below);
    below = LayerChain::pastAttached(below, *below);
    for (Layer* layer : layers) {
        const Ref<Layer> copy = copyOf(stack, *layer, false);
        if (!copy) return false;
        insertAbove(stack, *copy, below, group);
        below = copy.get();
        newIds.push_back(copy->id());
    }
    setActiveLayer(stack, below, false, false);
    return true;
}

std::int32_t newTemporaryLayer(StackParts& stack) {
    const Ref<Layer> layer = stack.active.layer;
    ilSmartImage* const color = rasterOf(layer.get());
    if (!color || layer == stack.selection.layer) return noLayer;
    closeTransform(stack);
    const Ref<ilSmartImage> taken = color->clone();
    if (!taken) return noLayer;
    // What is held back stays where it is, and so does the stencil that attenuates it.
    const bool restricted = bool(stack.selection.paintMask);
    if (restricted) cutByMask(stack, *layer, *taken, pairKeepInside);
    const Ref<Layer> copy = temporaryLike(*layer, *taken);
    if (restricted) {
        cutByMask(stack, *layer, *color, pairKeepOutside);
    } else {
        blankOut(*color);
        layer->clearStencil();
    }
    layer->touch();
    noteChange(stack, layer.get());
    insertAbove(stack, *copy, layer.get(), groupAround(layer.get()));
    const bool wasSelected = stack.selection.active;
    setActiveLayer(stack, copy.get(), false, false);
    if (wasSelected) resetSelection(stack);
    return copy->id();
}

}  // namespace brushwork::stack
