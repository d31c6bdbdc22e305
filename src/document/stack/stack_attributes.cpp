#include "document/stack/stack_attributes.h"

#include <algorithm>
#include <cmath>

#include "document/layer/document_switches.h"
#include "document/stack/stack_display.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_paint_mask.h"

namespace brushwork::stack {
namespace {

ilTile placedContent(Layer& layer) {
    ilTile box;
    layer.contentBounds(box, true);
    return box;
}

// The nearest place at which a span of `size` still touches the canvas' span by a pixel.
float touching(float place, std::int32_t start, std::int32_t size, std::int32_t canvasStart,
               std::int32_t canvasSize) {
    const float lowest = static_cast<float>(canvasStart - start - size + 1);
    const float highest = static_cast<float>(canvasStart + canvasSize - start - 1);
    return std::clamp(place, lowest, std::max(lowest, highest));
}

// A fill that isn't blank shows all over the canvas, and so does what a mask leaves.
bool reachesEverywhere(Layer& layer) {
    if (layer.role() != LayerRole::Paint) return true;
    ilImage* const color = layer.colorImageRef();
    return color && color->fill() != ilPixel(TypeUChar, color->channels());
}

template <class Change>
void change(StackParts& stack, std::int32_t id, const Change& set) {
    Layer* const layer = layerById(stack, id);
    if (!layer) return;
    set(*layer);
    attributeChanged(stack, *layer);
}

// What no pixel shows: only the host learns of it.
template <class Change>
void changeQuietly(StackParts& stack, std::int32_t id, const Change& set) {
    Layer* const layer = layerById(stack, id);
    if (!layer) return;
    set(*layer);
    ++stack.damage.generation;
}

}  // namespace

void attributeChanged(StackParts& stack, Layer& layer) {
    layer.touch();
    layer.propagateChange(true);
    noteChange(stack, &layer);
    const bool feedsMask = layer.role() != LayerRole::Paint;
    if (feedsMask) {
        layer.markClipDirty(true);
        stack.caches.aboveStale = true;
    }
    staleSide(stack, layer);
    if (feedsMask) rebuildPaintMask(stack);
    if (documentSwitches().compositeCacheEnabled)
        refreshDisplay(stack, false);
    else
        invalidateRect(stack, placedContent(layer));
}

void setVisible(StackParts& stack, std::int32_t id, bool visible, std::int32_t arg) {
    change(stack, id, [&](Layer& layer) { layer.setVisible(visible, arg); });
}

void setOpacity(StackParts& stack, std::int32_t id, float opacity) {
    if (!(opacity >= 0.0f)) opacity = 0.0f;
    change(stack, id, [&](Layer& layer) { layer.setOpacity(std::min(opacity, 1.0f)); });
}

void setBlendMode(StackParts& stack, std::int32_t id, std::int32_t mode) {
    change(stack, id, [&](Layer& layer) { layer.setBlendMode(mode); });
}

void setLocked(StackParts& stack, std::int32_t id, bool locked) {
    changeQuietly(stack, id, [&](Layer& layer) { layer.setLocked(locked); });
}

void setLabelColor(StackParts& stack, std::int32_t id, std::uint32_t label) {
    changeQuietly(stack, id, [&](Layer& layer) { layer.setLabelColor(label); });
}

void setEnabled(StackParts& stack, std::int32_t id, bool enabled, std::int32_t arg) {
    change(stack, id, [&](Layer& layer) { layer.setEnabled(enabled, arg); });
}

void setStencilActive(StackParts& stack, std::int32_t id, bool active) {
    change(stack, id, [&](Layer& layer) { layer.setStencilActive(active); });
}

void setName(StackParts& stack, std::int32_t id, const znString::IString& name) {
    changeQuietly(stack, id, [&](Layer& layer) { layer.setName(name); });
}

void setPosition(StackParts& stack, std::int32_t id, float x, float y, bool presentIt,
                 bool unrestricted) {
    Layer* const layer = layerById(stack, id);
    if (!layer || !std::isfinite(x) || !std::isfinite(y)) return;
    ilTile content;
    layer->contentBounds(content, false);
    const ilTile& canvas = stack.plane.canvasBounds;
    if (!unrestricted && !content.isEmpty() && !canvas.isEmpty()) {
        x = touching(x, content.x, content.nx, canvas.x, canvas.nx);
        y = touching(y, content.y, content.ny, canvas.y, canvas.ny);
    }
    const ilTile before = placedContent(*layer);
    layer->setOffset(x, y);
    layer->touch();
    layer->propagateChange(true);
    noteChange(stack, layer);
    if (layer->role() != LayerRole::Paint) layer->markClipDirty(true);
    staleSide(stack, *layer);
    rebuildPaintMask(stack);
    invalidateRect(stack, intersection(before, canvas));
    invalidateRect(stack, intersection(placedContent(*layer), canvas));
    if (reachesEverywhere(*layer)) invalidateRect(stack, canvas);
    if (presentIt) present(stack);
}

void setBackground(StackParts& stack, const LayerColor& color) {
    stack.backgroundColor = color;
    ++stack.damage.generation;
    stack.caches.groups.clear();
    stack.caches.whole.reset();
    stack.caches.belowStale = true;
    refreshDisplay(stack, false);
}

void setMaskColor(StackParts& stack, const LayerColor& color) {
    stack.selection.maskColor = color;
    static_cast<void>(eachLayer(stack.list, [&](Layer& layer) {
        if (layer.isMask()) layer.setOverlayColor(color);
        return true;
    }));
    staleBoth(stack);
    refreshDisplay(stack, false);
}

void setMaskOpacity(StackParts& stack, float opacity) {
    stack.selection.maskOpacity = opacity;
    static_cast<void>(eachLayer(stack.list, [&](Layer& layer) {
        if (layer.role() != LayerRole::Paint) layer.setOverlayOpacity(opacity);
        return true;
    }));
    staleBoth(stack);
    refreshDisplay(stack, false);
}

void absorbOrigin(StackParts& stack) {
    const std::int32_t x = stack.plane.originX;
    const std::int32_t y = stack.plane.originY;
    if (x == 0 && y == 0) return;
    static_cast<void>(eachLayer(stack.list, [x, y](Layer& layer) {
        layer.absorbOrigin(x, y);
        return true;
    }));
    if (stack.selection.layer) stack.selection.layer->absorbOrigin(x, y);
    stack.plane.originX = 0;
    stack.plane.originY = 0;
    stack.plane.refreshBounds();
    stack.caches.groups.clear();
    noteListChange(stack);
    rebuildPaintMask(stack);
}

bool layerState(const StackParts& stack, std::int32_t id, LayerStateRecord& state) {
    Layer* const layer = layerById(stack, id);
    if (!layer) return false;
    state.isGroup = layer->asGroup() != nullptr;
    state.isText = (layer->flags() & Layer::HasText) != 0;
    state.visible = layer->visible();
    state.locked = layer->locked();
    state.blendFlag = (layer->blendFlags() & 1) != 0;
    state.blendMode = layer->blendMode();
    return true;
}

}  // namespace brushwork::stack
