#include "document/stack/stack_insert.h"

#include "document/layer/document_switches.h"
#include "document/layer/layer_numbers.h"
#include "document/layer/shape_layer.h"
#include "document/stack/stack_active.h"
#include "document/stack/stack_display.h"
#include "document/stack/stack_draw.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_transform.h"
#include "foundation/host/host_canvas.h"

namespace brushwork::stack {
namespace {

// An id stands for one layer of a stack.
void giveOwnIds(StackParts& stack, Layer& layer) {
    if (layerById(stack, layer.id())) layer.setId(nextLayerId());
    if (LayerGroup* const group = layer.asGroup())
        group->eachMember([&](Layer& member) { giveOwnIds(stack, member); });
}

// Stencils and masks belong to the paint layer below them: where one comes or goes, or a paint
// layer comes between, both that have them now and that had them are clipped otherwise.
void attachmentChanged(Layer& layer) {
    if (!isAttached(&layer) && !isAttached(layer.next.get())) return;
    layer.markClipDirty(true);
    if (layer.previous) layer.previous->baseLayer()->markClipDirty(true);
}

// What stood over the canvas before, and what the layer covers now, must be composed again.
void placeChanged(StackParts& stack, Layer& layer) {
    layer.propagateChange(true);
    // What stands above a paint layer may clip it.
    Layer* const below = layer.previous ? layer.previous->baseLayer() : &layer;
    below->markClipDirty(true);
    layer.markClipDirty(true);
    for (Layer* above = outermost(below); above; above = above->next.get())
        stack.caches.groups.noteChange(above->id());
    noteListChange(stack);
    invalidateRect(stack, stack.plane.canvasBounds);
}

Ref<ilSmartImage> copyOf(ilImage& image) {
    if (ilSmartImage* const smart = ilSmartImage::from(&image)) return smart->clone();
    const std::int32_t channels = image.channels() == 1 ? 1 : 4;
    const Ref<ilSmartImage> copy(new ilSmartImage(ilPixel(TypeUChar, channels)));
    const ilTile box = image.box();
    copy->copyRegion(flatTile(0, 0, box.nx, box.ny), image, 0, 0, 0, nullptr,
                     CopyDirection::FromOther);
    return copy;
}

Ref<ilSmartImage> blank(LayerRole role) {
    return Ref<ilSmartImage>(
        new ilSmartImage(ilPixel(TypeUChar, role == LayerRole::Paint ? 4 : 1)));
}

LayerRole roleOf(const NewLayer& wanted) {
    if (!wanted.color) return wanted.role;
    if (wanted.color->channels() != 1) return LayerRole::Paint;
    return wanted.role == LayerRole::Stencil ? LayerRole::Stencil : LayerRole::Mask;
}

Ref<Layer> makeShapeLayer(StackParts& stack, const NewLayer& wanted) {
    const ShapeLayerKind kind = shapeLayerKind(wanted.shapeKind);
    Ref<ilSmartImage> background;
    std::int32_t x = wanted.x;
    std::int32_t y = wanted.y;
    if (kind == ShapeLayerKind::Warp)
        background = composeToImage(stack, activeOne, &x, &y, false, false, false);
    const Ref<ShapeLayer> layer(new ShapeLayer(kind, background.get(), x, y));
    layer->setDocumentBox(stack.plane.canvasBounds);
    return layer;
}

Ref<Layer> makeLayer(StackParts& stack, const NewLayer& wanted) {
    if (wanted.shape) return makeShapeLayer(stack, wanted);
    const LayerRole role = roleOf(wanted);
    const Ref<ilSmartImage> color = wanted.color ? copyOf(*wanted.color) : blank(role);
    if (!color) return {};
    const Ref<ilSmartImage> stencil =
        wanted.stencil ? copyOf(*wanted.stencil) : Ref<ilSmartImage>();
    if (wanted.clip) {
        const ilTile& canvas = stack.plane.canvasBounds;
        color->setBounds(flatTile(canvas.x - wanted.x, canvas.y - wanted.y, canvas.nx, canvas.ny),
                         true);
        color->shrinkBounds();
    }
    return Ref<Layer>(new Layer(color.get(), stencil.get(), role, Layer::plainFlags,
                                static_cast<float>(wanted.x), static_cast<float>(wanted.y)));
}

bool isRefused(const StackParts& stack, const NewLayer& wanted) {
    if (wanted.shape || roleOf(wanted) == LayerRole::Paint) return false;
    const Layer* const target = layerByIndex(stack, wanted.at, !wanted.group, wanted.group);
    return target && target->holdsShapes();
}

}  // namespace

void insertAbove(StackParts& stack, Layer& layer, Layer* below, LayerGroup* group) {
    const Ref<Layer> held(&layer);
    giveOwnIds(stack, layer);
    if (group) {
        group->insertChild(layer, below ? activeOne : 0, below);
    } else {
        layer.parent = nullptr;
        stack.list.insertAbove(layer, below);
    }
    layer.setOrigin(stack.plane.originX, stack.plane.originY);
    attachmentChanged(layer);
    placeChanged(stack, layer);
}

void inheritState(Layer& layer, const LayerGroup& group) {
    if (!group.visible()) layer.setVisible(false);
    if (group.locked()) layer.setLocked(true, true);
    layer.setLabelColor(group.labelColor());
}

void insertLayer(StackParts& stack, Layer& layer, bool belowMatching, std::int32_t at,
                 LayerGroup* group, bool inherit) {
    Layer* below = nullptr;
    if (at == activeOne)
        below = stack.active.layer.get();
    else if (at > 0)
        below = layerByIndex(stack, at, !group, group);
    if (below == stack.selection.layer.get()) below = group ? group->lastChild() : stack.list.last;
    if (group && below && groupAround(below) != group) below = group->lastChild();
    if (group && !below && at != 0) below = group->lastChild();
    if (!group) group = groupAround(below);
    if (belowMatching) below = LayerChain::pastAttached(below, layer);
    insertAbove(stack, layer, below, group);
    if (group && inherit) inheritState(layer, *group);
}

void unlinkLayer(StackParts& stack, Layer& layer) {
    const Ref<Layer> held(&layer);
    placeChanged(stack, layer);
    attachmentChanged(layer);
    if (LayerGroup* const group = groupAround(&layer))
        group->removeChild(layer);
    else
        stack.list.remove(layer);
    layer.parent = nullptr;
}

std::int32_t addLayer(StackParts& stack, const NewLayer& wanted) {
    stack.caches.whole.reset();
    closeTransform(stack);
    if (isRefused(stack, wanted)) return noLayer;
    const Ref<Layer> layer = makeLayer(stack, wanted);
    if (!layer) return noLayer;
    layer->setOverlayColor(stack.selection.maskColor);
    layer->setOverlayOpacity(stack.selection.maskOpacity);
    insertLayer(stack, *layer, layer->role() == LayerRole::Paint, wanted.at, wanted.group, true);
    if (wanted.makeActive || !stack.active.layer)
        setActiveLayer(stack, layer.get(), wanted.render, false);
    else
        hostLayerListChanged(false);
    if (wanted.render && documentSwitches().compositeCacheEnabled) refreshDisplay(stack, false);
    return layer->id();
}

std::int32_t addGroup(StackParts& stack, const znString::IString& name, std::int32_t at,
                      bool makeActive) {
    closeTransform(stack);
    const Ref<LayerGroup> group(new LayerGroup(name));
    insertLayer(stack, *group, true, at, nullptr, true);
    if (makeActive || !stack.active.layer)
        setActiveLayer(stack, group.get(), false, false);
    else
        hostLayerListChanged(false);
    return group->id();
}

}  // namespace brushwork::stack
