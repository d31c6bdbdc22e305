#include "document/stack/stack_merge.h"

#include <vector>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/changed_area.h"
#include "document/layer/layer_boxes.h"
#include "document/stack/stack_active.h"
#include "document/stack/stack_delete.h"
#include "document/stack/stack_display.h"
#include "document/stack/stack_draw.h"
#include "document/stack/stack_insert.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_painters.h"
#include "document/stack/stack_raster.h"
#include "document/stack/stack_transform.h"
#include "foundation/host/host_canvas.h"

namespace brushwork::stack {
namespace {

bool takesPart(const Layer& layer) {
    return layer.visible() && !isAttached(&layer);
}

void deleteAttached(StackParts& stack, Layer& layer) {
    while (isAttached(layer.next.get())) deleteLayer(stack, *Ref<Layer>(layer.next));
}

void removeWithAttached(StackParts& stack, Layer& layer) {
    const Ref<Layer> held(&layer);
    if (!isAttached(&layer)) deleteAttached(stack, layer);
    unlinkLayer(stack, layer);
}

// The top one of what is attached to the layer, or the layer.
Layer* withAttached(Layer* layer) {
    while (isAttached(layer->next.get())) layer = layer->next.get();
    return layer;
}

// All that attenuates it goes into its pixels, which then stand at document coordinates.
void bakeForMerge(Layer& layer) {
    layer.bakeClip();
    layer.bakeStencil();
    layer.bakeOpacity();
    layer.bakeOffset();
}

// The target has an offset of zero.
void drawOnto(StackParts& stack, Layer& source, Layer& target) {
    ilSmartImage* const image = target.smartColor();
    LayerDraw draw;
    source.contentBounds(draw.box, true);
    if (ilImage* const color = source.colorImageRef(); color && coversGround(*color))
        draw.box = unionOf(draw.box, stack.plane.canvasBounds);
    if (draw.box.isEmpty() || !image) return;
    const Ref<SoftPaintOps> painter(new SoftPaintOps(image));
    painter->setBlendFactors(pairOver.source, pairOver.target);
    draw.ownOpacity = true;
    drawLayer(stack, &source, *painter, draw);
    target.touch();
}

void showAndSelect(StackParts& stack, Layer& layer) {
    layer.setVisible(true);
    setActiveLayer(stack, &layer, false, true);
}

Ref<Layer> layerOf(ilSmartImage& image, const znString::IString& name) {
    return Ref<Layer>(
        new Layer(&image, nullptr, LayerRole::Paint, Layer::plainFlags, 0.0f, 0.0f, name));
}

// A list as one picture, hidden layers left out.
Ref<ilSmartImage> pictureOf(StackParts& stack, const LayerChain& chain) {
    std::vector<Layer*> layers;
    std::vector<float> opacities;
    gatherVisible(chain, 1.0f, layers, opacities);
    return composeLayers(stack, layers, opacities);
}

// What a group or a shape layer shows, as a plain layer above it.
Ref<Layer> plainLayerFor(StackParts& stack, Layer& layer) {
    Ref<ilSmartImage> image;
    if (LayerGroup* const group = layer.asGroup()) {
        image = pictureOf(stack, group->children());
    } else {
        image = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
        const Ref<SoftPaintOps> painter(new SoftPaintOps(image.get()));
        LayerDraw draw;
        layer.contentBounds(draw.box, true);
        const float opacity = layer.opacity();
        layer.setOpacity(1.0f);
        draw.ownOpacity = true;
        drawLayer(stack, &layer, *painter, draw);
        layer.setOpacity(opacity);
    }
    Ref<Layer> plain = layerOf(*image, layer.name());
    plain->setBlendMode(layer.isPassThrough() ? 0 : layer.blendMode());
    plain->setOpacity(layer.opacity());
    plain->setVisible(layer.visible(), layer.visibleArg());
    plain->setLabelColor(layer.labelColor());
    insertAbove(stack, *plain, withAttached(&layer), groupAround(&layer));
    return plain;
}

void moveAbove(StackParts& stack, Layer& layer, Layer& below) {
    const Ref<Layer> held(&layer);
    unlinkLayer(stack, layer);
    insertAbove(stack, layer, &below, groupAround(&below));
}

// Hidden members with what is attached to them.
void collectHidden(const LayerGroup& group, std::vector<Ref<Layer>>& hidden) {
    bool baseIsHidden = false;
    for (Layer* layer = group.firstChild(); layer; layer = layer->next.get()) {
        if (!isAttached(layer)) baseIsHidden = !layer->visible();
        if (baseIsHidden)
            hidden.emplace_back(layer);
        else if (const LayerGroup* const inner = layer->asGroup())
            collectHidden(*inner, hidden);
    }
}

// Hidden members are no part of the merged layer: they stay, above what their group was.
void liftHidden(StackParts& stack, LayerGroup& group) {
    std::vector<Ref<Layer>> hidden;
    collectHidden(group, hidden);
    Layer* below = withAttached(&group);
    for (const Ref<Layer>& layer : hidden) {
        moveAbove(stack, *layer, *below);
        below = layer.get();
    }
}

// The layer into which all above goes: the lowest paint layer, of its kind or made for it.
Ref<Layer> groundLayer(StackParts& stack, bool visibleOnly) {
    Layer* lowest = stack.list.first.get();
    while (lowest && (isAttached(lowest) || (visibleOnly && !lowest->visible())))
        lowest = lowest->next.get();
    if (!lowest) return {};
    Ref<Layer> ground(lowest);
    if (!rasterOf(lowest)) {
        ground = plainLayerFor(stack, *lowest);
        removeWithAttached(stack, *lowest);
    }
    bakeForMerge(*ground);
    deleteAttached(stack, *ground);
    // It will be shown, and what was hidden won't.
    if (!ground->visible()) blankOut(*ground->smartColor());
    return ground;
}

}  // namespace

bool mergeable(const StackParts& stack, std::int32_t id, std::int32_t idBelow) {
    Layer* const a = layerById(stack, id);
    Layer* const b = layerById(stack, idBelow);
    if (!a || !b || a == b || a->parent != b->parent) return false;
    if (a == stack.selection.layer.get() || b == stack.selection.layer.get()) return false;
    if (a->asGroup() || b->asGroup() || b->holdsShapes()) return false;
    return isAttached(a) == isAttached(b);
}

bool mergeDown(StackParts& stack, std::int32_t id, std::int32_t idBelow) {
    closeTransform(stack);
    if (!mergeable(stack, id, idBelow)) return false;
    const Ref<Layer> source(layerById(stack, id));
    const Ref<Layer> target(layerById(stack, idBelow));
    setActiveLayer(stack, target.get(), false, false);
    target->setVisible(true);
    paintOps(stack);
    if (source->holdsShapes()) {
        target->bakeClip();
        target->bakeOffset();
    } else {
        source->bakeStencil();
        source->bakeOpacity();
        bakeForMerge(*target);
    }
    drawOnto(stack, *source, *target);
    if (!isAttached(target.get())) deleteAttached(stack, *target);
    removeWithAttached(stack, *source);
    noteChange(stack, target.get());
    target->propagateChange(true);
    showAndSelect(stack, *target);
    refreshDisplay(stack, false);
    return true;
}

bool mergeVisible(StackParts& stack, bool dryRun, std::int32_t at, bool presentIt) {
    std::vector<Ref<Layer>> merged;
    for (Layer* layer = stack.list.first.get(); layer; layer = layer->next.get())
        if (takesPart(*layer)) merged.emplace_back(layer);
    if (merged.empty() || (merged.size() == 1 && !merged.front()->asGroup())) return false;
    if (dryRun) return true;
    closeTransform(stack);
    const Ref<Layer> below(at > 0 ? layerByIndex(stack, at, true) : nullptr);
    for (const Ref<Layer>& layer : merged)
        if (LayerGroup* const group = layer->asGroup()) liftHidden(stack, *group);
    const Ref<Layer> result = layerOf(*pictureOf(stack, stack.list), merged.front()->name());
    insertAbove(stack, *result, withAttached(merged.front().get()), nullptr);
    for (const Ref<Layer>& layer : merged) removeWithAttached(stack, *layer);
    if (below && stack.list.byId(below->id(), true) == below) moveAbove(stack, *result, *below);
    showAndSelect(stack, *result);
    if (presentIt) refreshDisplay(stack, false);
    return true;
}

bool flatten(StackParts& stack, bool visibleOnly) {
    if (!stack.painters.current) return false;
    closeTransform(stack);
    static_cast<void>(eachLayer(stack.list, [](Layer& layer) { return layer.clearWet(), true; }));
    const Ref<Layer> ground = groundLayer(stack, visibleOnly);
    if (!ground) return false;
    Ref<Layer> active = ground;
    Ref<Layer> above(ground->next);
    while (above) {
        const Ref<Layer> layer = above;
        above = Ref<Layer>(withAttached(layer.get())->next);
        if ((layer->flags() & Layer::KeptByFlatten) != 0) {
            active = layer;
        } else if (layer->visible() || !visibleOnly) {
            if (layer->visible()) drawOnto(stack, *layer, *ground);
            removeWithAttached(stack, *layer);
        }
    }
    ground->setVisible(true);
    noteChange(stack, ground.get());
    setActiveLayer(stack, active.get(), false, true);
    stack.painters.current->setBlendFactors(pairCopy.source, pairCopy.target);
    hostLayerListChanged(false);
    invalidateRect(stack, stack.plane.canvasBounds);
    return true;
}

bool flattenGroup(StackParts& stack, std::int32_t id, bool dryRun, std::int32_t at,
                  bool presentIt) {
    const Ref<Layer> group(groupById(stack, id));
    if (!group) return false;
    if (dryRun) return true;
    closeTransform(stack);
    Layer* const below = at > 0 ? layerByIndex(stack, at, true) : nullptr;
    const Ref<Layer> result = plainLayerFor(stack, *group);
    const bool isElsewhere = below && below != stack.selection.layer && !standsIn(below, *group);
    if (isElsewhere) moveAbove(stack, *result, *below);
    setActiveLayer(stack, result.get(), false, false);
    removeWithAttached(stack, *group);
    hostLayerListChanged(false);
    if (presentIt) refreshDisplay(stack, false);
    return true;
}

}  // namespace brushwork::stack
