// Layer: moves and the floating transform.
#include "document/layer/changed_area.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

Ref<ilImage> childOf(ilImage* image) {
    return image ? Ref<ilImage>(new ilSmartImage(image)) : Ref<ilImage>();
}

// Where the untransformed picture would lie if the placed one lay at `place`. A pivot that wasn't
// set is the picture's middle, `middle` away from its pixel (0, 0), and moves along with it.
float beforePlacing(float place, float pivot, bool pivotSet, float middle, std::int32_t delta,
                    float scale) {
    if (scale == 0.0f) scale = 1.0f;
    const auto shift = static_cast<float>(delta);
    if (pivotSet) return ((place - pivot) - shift) / scale + pivot;
    return place - shift - middle + middle * scale;
}

}  // namespace

void Layer::setOffset(float x, float y) {
    setTransform(TransformRecord(), x, y);
}

void Layer::setOffsetInt(const TransformRecord& record, std::int32_t x, std::int32_t y) {
    setTransform(record, static_cast<float>(x), static_cast<float>(y));
}

void Layer::setTransform(const TransformRecord& record, float x, float y) {
    if ((flags_ & Movable) == 0) return;
    ChangedArea area(*this);
    if (x != place_.offsetX || y != place_.offsetY) markClipDirty(true);
    place_.offsetX = x;
    place_.offsetY = y;
    if (transform_.open) {
        const ilTile box = boundsOf(transform_.color.get());
        const auto middleX = static_cast<float>(box.x + box.nx / 2);
        const auto middleY = static_cast<float>(box.y + box.ny / 2);
        transform_.offsetX = beforePlacing(x, place_.pivotX, place_.pivotSet, middleX,
                                           transform_.deltaX, record.scaleX);
        transform_.offsetY = beforePlacing(y, place_.pivotY, place_.pivotSet, middleY,
                                           transform_.deltaY, record.scaleY);
    }
    area.mark();
}

// The live images become children of the kept ones: whatever is drawn into them, the kept ones stay
// as they were.
void Layer::beginTransform(std::int32_t mode, std::int32_t arg, bool up) {
    if (transform_.open) return;
    transform_.mode = mode;
    transform_.arg = arg;
    ensureStencil();
    if (mode == 0) tighten();
    transform_.color = images_.color;
    transform_.stencil = images_.stencil;
    const Ref<ilImage> color = childOf(transform_.color.get());
    const Ref<ilImage> stencil = childOf(transform_.stencil.get());
    setColorImage(color.get());
    if (stencil) setStencilImage(stencil.get());
    transform_.previewColor = mode == 0 ? Ref<ilImage>() : color;
    transform_.previewStencil = mode == 0 ? Ref<ilImage>() : stencil;
    transform_.offsetX = place_.offsetX;
    transform_.offsetY = place_.offsetY;
    transform_.deltaX = transform_.deltaY = 0;
    transform_.open = true;
    if (up && parent) parent->asLayer().beginTransform(mode, arg, up);
}

void Layer::endTransform(bool keepPreview) {
    if (!transform_.open) return;
    ChangedArea area(*this);
    const FloatingTransform kept = transform_;
    transform_ = FloatingTransform();
    transform_.mode = kept.mode;
    transform_.arg = kept.arg;
    place_.offsetX = kept.offsetX;
    place_.offsetY = kept.offsetY;
    setColorImage(kept.color.get());
    if (kept.stencil) setStencilImage(kept.stencil.get());
    if (parent) parent->asLayer().endTransform(keepPreview);
    images_.levels.clear();
    images_.wetLevels.clear();
    if (!keepPreview) {
        view_.source.reset();
        view_.image.reset();
        setViewTransform(TransformRecord());
    }
    markClipDirty(true);
    area.mark();
}

}  // namespace brushwork
