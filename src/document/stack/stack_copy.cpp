#include "document/stack/stack_copy.h"

#include <algorithm>
#include <cmath>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/shape_layer.h"
#include "document/stack/stack_active.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_paint_mask.h"
#include "document/stack/stack_selection.h"
#include "foundation/host/host_calls.h"
#include "foundation/host/host_canvas.h"
#include "foundation/services/log.h"

namespace brushwork::stack {
namespace {

constexpr std::int32_t layerLogs = 0x2016;

void keepIds(Layer& to, Layer& from) {
    to.setId(from.id());
    if (ShapeLayer* const shapes = ShapeLayer::from(&to))
        if (const ShapeLayer* const source = ShapeLayer::from(&from))
            shapes->takeShapeIdsOf(*source);
    LayerGroup* const group = to.asGroup();
    LayerGroup* const source = from.asGroup();
    if (!group || !source) return;
    Layer* member = group->firstChild();
    for (Layer* step = source->firstChild(); step && member;
         step = step->next.get(), member = member->next.get())
        keepIds(*member, *step);
}

Ref<Layer> copyOf(Layer& layer) {
    const Ref<Layer> copy = layer.clone();
    if (copy) keepIds(*copy, layer);
    return copy;
}

void copyLayers(StackParts& to, const StackParts& from) {
    to.list.clear();
    for (Layer* layer = from.list.first.get(); layer; layer = layer->next.get())
        if (const Ref<Layer> copy = copyOf(*layer)) to.list.insertAbove(*copy, to.list.last);
    if (from.selection.layer) to.selection.layer = copyOf(*from.selection.layer);
}

void copyAttributes(StackParts& to, const StackParts& from) {
    to.selection.mode = from.selection.mode;
    to.selection.opacity = from.selection.opacity;
    to.selection.color = from.selection.color;
    to.selection.maskOpacity = from.selection.maskOpacity;
    to.selection.maskColor = from.selection.maskColor;
    to.backgroundColor = from.backgroundColor;
    to.useGlobalBackground = from.useGlobalBackground;
    to.view.record = from.view.record;
    to.view.valid = from.view.valid;
    to.plane.gridX = from.plane.gridX;
    to.plane.gridY = from.plane.gridY;
    to.plane.hostFlag = from.plane.hostFlag;
    to.plane.originX = from.plane.originX;
    to.plane.originY = from.plane.originY;
    to.active.hideOthers = from.active.hideOthers;
    to.painters.onStencil = from.painters.onStencil;
    to.damage.deferComposite = from.damage.deferComposite;
    to.damage.clearOnPresent = from.damage.clearOnPresent;
    to.damage.thumbnailsWanted = from.damage.thumbnailsWanted;
    to.display.checkerboard = from.display.checkerboard;
    to.transform.pivotX = from.transform.pivotX;
    to.transform.pivotY = from.transform.pivotY;
    to.transform.pivotSet = from.transform.pivotSet;
    to.cloneSource = from.cloneSource;
    to.nameTag = from.nameTag;
}

void makeScratch(StackParts& stack) {
    stack.painters.scratchImage = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
    stack.painters.scratch = Ref<SoftPaintOps>(new SoftPaintOps(stack.painters.scratchImage.get()));
}

void activateAs(StackParts& to, const StackParts& from) {
    Layer* active = nullptr;
    if (from.active.layer && from.active.layer == from.selection.layer)
        active = to.selection.layer.get();
    else if (from.active.layer)
        active = to.list.at(from.list.indexOf(*from.active.layer, true), true);
    to.active.layer = Ref<Layer>(active);
    to.active.indexCache = noLayer;
}

bool scaleLayer(Layer& layer, float scale, SampleMode mode) {
    LayerGroup* const group = layer.asGroup();
    return group ? group->scaleInto(scale, mode) : layer.scaleBy(scale, mode);
}

}  // namespace

void copyParts(StackParts& to, const StackParts& from) {
    copyAttributes(to, from);
    to.plane.canvas = from.plane.canvas;
    to.plane.image = from.plane.image;
    to.plane.ops = from.plane.ops;
    to.plane.canvasBounds = from.plane.canvasBounds;
    to.damage.generation = from.damage.generation;
    to.isCurrent = from.isCurrent;
    copyLayers(to, from);
    makeScratch(to);
    activateAs(to, from);
    rebuildPaintMask(to);
}

void copyStackFrom(StackParts& to, const StackParts& from) {
    copyAttributes(to, from);
    setActiveLayer(to, nullptr, false, true);
    copyLayers(to, from);
    to.plane.refreshBounds();
    to.caches.groups.clear();
    activateAs(to, from);
    noteListChange(to);
    to.selection.outline.reset();
    to.selection.changed = true;
    rebuildPaintMask(to);
    invalidateRect(to, to.plane.canvasBounds);
    hostLayerListChanged(true);
    hostActiveLayerChanged();
}

bool scaleFrom(StackParts& to, const StackParts& from, float scale, SampleMode mode) {
    if (!(scale > 0.0f)) return false;
    copyStackFrom(to, from);
    to.plane.originX =
        static_cast<std::int32_t>(std::lround(static_cast<float>(from.plane.originX) * scale));
    to.plane.originY =
        static_cast<std::int32_t>(std::lround(static_cast<float>(from.plane.originY) * scale));
    to.plane.refreshBounds();
    const auto placeOn = [&to](Layer& layer) {
        layer.setOrigin(to.plane.originX, to.plane.originY);
        return true;
    };
    static_cast<void>(eachLayer(to.list, placeOn));
    if (to.selection.layer) placeOn(*to.selection.layer);
    bool done = true;
    for (Layer* layer = to.list.first.get(); layer; layer = layer->next.get())
        done = scaleLayer(*layer, scale, mode) && done;
    if (to.selection.layer) done = scaleLayer(*to.selection.layer, scale, mode) && done;
    selectionChanged(to);
    noteListChange(to);
    return done;
}

void collapseImages(StackParts& stack) {
    for (Layer* layer = stack.list.first.get(); layer; layer = layer->next.get())
        layer->collapseImages();
}

void dump(StackParts& stack) {
    if (hostDebugLevel() != layerLogs) return;
    std::int32_t index = 0;
    static_cast<void>(eachLayer(stack.list, [&](Layer& layer) {
        log(" Index(%d)", ++index);
        layer.dump(&layer == stack.active.layer.get());
        return true;
    }));
    log("\n<<<< LayerStack [end] >>>>\n");
}

}  // namespace brushwork::stack
