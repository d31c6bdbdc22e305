// Copies of a layer and of its pixels. Pages are shared until somebody writes.
#include <algorithm>

#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/layer_numbers.h"

namespace brushwork {
namespace {

// Fill, bounds and attributes are the source's. Null for null and without memory.
Ref<ilSmartImage> smartCopy(ilImage* image) {
    if (!image) return {};
    ilSmartImage* const smart = ilSmartImage::from(image);
    if (!smart) {
        const Ref<ilSmartImage> copy(new ilSmartImage(image));
        copy->materialize(nullptr, true);
        copy->setSource(nullptr);
        return copy;
    }
    const Ref<ilSmartImage> copy = smart->clone();
    if (!copy) return {};
    copy->setTrackAlpha(smart->trackAlpha());
    if (smart->hasFixedBounds()) copy->setFixedBounds(boundsOf(smart));
    return copy;
}

}  // namespace

Layer::Layer(const Layer& other)
    : Resource(),
      tag(other.tag),
      wet_(other.wet_),
      place_(other.place_),
      thumbnail_(other.thumbnail_),
      flags_(other.flags_),
      role_(other.role_),
      id_(nextLayerId()),
      name_(other.name_),
      blendMode_(other.blendMode_),
      labelColor_(other.labelColor_),
      opacity_(other.opacity_),
      overlayOpacity_(other.overlayOpacity_),
      overlayColor_(other.overlayColor_),
      visible_(other.visible_),
      enabled_(other.enabled_),
      stencilActive_(other.stencilActive_),
      locked_(other.locked_),
      visibleArg_(other.visibleArg_),
      enabledArg_(other.enabledArg_),
      changedFlag_(other.changedFlag_),
      blendFlags_(other.blendFlags_) {
    images_.color = smartCopy(other.images_.color.get());
    images_.stencil = smartCopy(other.images_.stencil.get());
    images_.clip = smartCopy(other.images_.clip.get());
    images_.clipDirty = other.images_.clipDirty;
    images_.source = other.images_.source;
    view_.transform = other.view_.transform;
    if (other.textObject_) textObject_ = Ref<LayerTextObj>(new LayerTextObj(*other.textObject_));
}

Ref<Layer> Layer::clone() {
    return Ref<Layer>(new Layer(*this));
}

Ref<Layer> Layer::duplicate() {
    Ref<Layer> copy(new Layer(*this));
    copy->setId(id_);
    return copy;
}

Ref<ilSmartImage> Layer::copyOfColor(std::int32_t margin) {
    if (inTransform()) endTransform(false);
    if (inTransform()) return {};
    Ref<ilSmartImage> copy = smartCopy(colorImageRef());
    if (!copy || margin < 1) return copy;
    const ilTile box = boundsOf(copy.get());
    // Further out there are no pixels.
    const std::int32_t reach = std::min(margin, 1 << 20);
    if (!box.isEmpty())
        copy->setBounds(
            flatTile(box.x - reach, box.y - reach, box.nx + 2 * reach, box.ny + 2 * reach));
    return copy;
}

void Layer::renameImage(std::int32_t level) {
    const auto index = static_cast<std::size_t>(level);
    if (level < 1 || index >= images_.levels.size() || !images_.levels[index]) return;
    const Ref<ilImage> image = images_.levels[index];
    setColorImage(image.get());
    touch();
}

ilImage* Layer::levelImage(std::int32_t level) {
    ilImage* const color = colorImageRef();
    if (level <= 0 || level >= mostLevels || !color) return level == 0 ? color : nullptr;
    const auto index = static_cast<std::size_t>(level);
    if (images_.levels.size() <= index) images_.levels.resize(index + 1);
    if (!images_.levels[index]) images_.levels[index] = smartCopy(color);
    return images_.levels[index].get();
}

ilImage* Layer::wetLevelImage(std::int32_t level) {
    ilImage* const image = wet_.image.get();
    if (level <= 0 || level >= mostLevels || !image) return level == 0 ? image : nullptr;
    const auto index = static_cast<std::size_t>(level);
    if (images_.wetLevels.size() <= index) images_.wetLevels.resize(index + 1);
    if (!images_.wetLevels[index]) images_.wetLevels[index] = smartCopy(image);
    return images_.wetLevels[index].get();
}

}  // namespace brushwork
