// Attributes of a layer, the marks that they set, and what the list and the groups around say.
#include "document/layer/changed_area.h"
#include "document/layer/layer.h"

namespace brushwork {

void Layer::touch() {
    for (Layer* layer = this; layer;) {
        ++layer->view_.changeCount;
        layer->thumbnail_.dirty = true;
        layer->view_.source.reset();
        layer->changedFlag_ = true;
        layer = layer->parent ? &layer->parent->asLayer() : nullptr;
    }
}

void Layer::markClipDirty(bool dirty) {
    Layer* const owner = isStencil() ? baseLayer() : this;
    owner->images_.clipDirty = dirty;
    owner->view_.source.reset();
}

void Layer::propagateChange(bool touchSelf, const ilTile* box) {
    if (touchSelf)
        if (auto* const group = dynamic_cast<LayerParent*>(this)) group->markCache(box);
    for (LayerParent* around = parent; around; around = around->asLayer().parent)
        if (!around->isPassThrough()) around->markCache(box);
}

void Layer::setOpacity(float opacity) {
    if (opacity == opacity_) return;
    markClipDirty();
    opacity_ = opacity;
    propagateChange(false);
}

void Layer::setPivot(float x, float y, bool set) {
    place_.pivotX = x;
    place_.pivotY = y;
    place_.pivotSet = set;
}

// A hidden stencil no longer clips.
void Layer::setVisible(bool visible, std::int32_t arg) {
    if (isStencil() && visible != visible_) markClipDirty();
    visible_ = visible;
    visibleArg_ = arg;
    propagateChange(false);
}

void Layer::setLocked(bool locked, bool force) {
    if (force || !parent || !parent->asLayer().locked()) locked_ = locked;
}

void Layer::setBlendMode(std::int32_t mode) {
    blendMode_ = mode == passThroughMode && !asGroup() ? 0 : mode;
    propagateChange(false);
}

void Layer::setLabelColor(std::uint32_t label) {
    if (label < 8) labelColor_ = label;
}

void Layer::setEnabled(bool enabled, std::int32_t arg) {
    enabled_ = enabled;
    enabledArg_ = arg;
    propagateChange(false);
}

void Layer::setStencilActive(bool active) {
    if (active == stencilActive_) return;
    stencilActive_ = active;
    markClipDirty();
    propagateChange(false);
}

void Layer::setOverlayColor(const LayerColor& color) {
    overlayColor_ = color;
    propagateChange(false);
}

void Layer::setOverlayOpacity(float opacity) {
    overlayOpacity_ = opacity;
    propagateChange(false);
}

void Layer::setTextObject(LayerTextObj* object) {
    textObject_ = Ref<LayerTextObj>(object);
    flags_ = object ? flags_ | HasText : flags_ & ~std::uint32_t{HasText};
}

void Layer::setOrigin(std::int32_t x, std::int32_t y) {
    place_.originX = x;
    place_.originY = y;
}

void Layer::absorbOrigin(std::int32_t x, std::int32_t y) {
    ChangedArea area(*this);
    const auto moveX = static_cast<float>(x);
    const auto moveY = static_cast<float>(y);
    place_.offsetX += moveX;
    place_.offsetY += moveY;
    transform_.offsetX += moveX;
    transform_.offsetY += moveY;
    setOrigin(0, 0);
    markClipDirty();
    area.mark();
}

Layer* Layer::baseLayer() {
    for (Layer* layer = this; layer; layer = layer->previous)
        if (layer->role_ == LayerRole::Paint) return layer;
    return this;
}

Layer* Layer::nextClipLayer(bool skipMasks) {
    Layer* above = next.get();
    while (above && (!above->visible_ || (skipMasks && above->isMask()))) above = above->next.get();
    return above;
}

float Layer::inheritedOpacity() {
    float opacity = opacity_;
    for (LayerParent* around = parent; around && around->isPassThrough();
         around = around->asLayer().parent)
        opacity *= around->asLayer().opacity();
    return opacity;
}

bool Layer::isVisibleInTree(bool* around, bool stopAtOpaqueGroup) {
    bool shown = true;
    for (LayerParent* group = parent; group && shown; group = group->asLayer().parent) {
        if (stopAtOpaqueGroup && !group->isPassThrough()) break;
        shown = group->asLayer().visible();
    }
    if (around) *around = shown;
    return shown && visible_;
}

bool Layer::isDrawable() {
    return role_ == LayerRole::Paint && opacity_ > invisibleEnough && isVisibleInTree();
}

}  // namespace brushwork
