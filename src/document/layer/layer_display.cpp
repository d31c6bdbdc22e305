// Layer: placed copies for display, the levels that they are made from, and the pivot.
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

// What is shown of the layer, its own opacity aside: the colour itself where nothing attenuates it.
Ref<ilImage> shownImage(Layer& layer) {
    layer.prepareForRender(nullptr, false);
    const Ref<ilImage> color(layer.colorImageRef());
    if (!color || layer.asGroup()) return color;
    if (layer.role() == LayerRole::Paint) {
        layer.refreshClip();
        if (layer.isEmptyMask() && color->channels() == 4) return color;
    }
    return layer.drawWhole(layer.drawing({}, 1.0f));
}

}  // namespace

void Layer::refreshViewLevels(std::int32_t) {
    if (!view_.source) {
        view_.source = shownImage(*this);
        view_.image.reset();
    }
    if (view_.levels.isCurrent(view_.source.get(), view_.changeCount)) return;
    view_.levels.restart(view_.source.get(), view_.changeCount);
    view_.image.reset();
}

Ref<ilImage> Layer::renderTransformed(const TransformRecord& record, std::int32_t* x,
                                      std::int32_t* y) {
    refreshViewLevels(0);
    ilSmartImage* const source = ilSmartImage::from(view_.source.get());
    if (!source) return {};
    if (!(record == view_.transform)) view_.image.reset();
    view_.transform = record;
    if (!view_.image) {
        std::int32_t fromX = 0, fromY = 0;
        offsetInt(&fromX, &fromY);
        auto placeX = static_cast<float>(fromX), placeY = static_cast<float>(fromY);
        view_.image = applyTransformRecord(*source, record, &placeX, &placeY, true);
        view_.imageX = static_cast<std::int32_t>(placeX);
        view_.imageY = static_cast<std::int32_t>(placeY);
    }
    if (x) *x = view_.imageX;
    if (y) *y = view_.imageY;
    return view_.image;
}

void Layer::setViewTransform(const TransformRecord& record) {
    if (!(record == view_.transform)) view_.image.reset();
    view_.transform = record;
    if (parent) parent->asLayer().setViewTransform(record);
}

void Layer::dropView() {
    view_.source.reset();
    view_.image.reset();
    view_.levels.clear();
}

// While a transform floats the middle is that of the picture it began with.
void Layer::pivot(float* x, float* y) {
    if (!place_.pivotSet) {
        float fromX = 0.0f, fromY = 0.0f;
        ilTile box;
        if (transform_.open && transform_.color) {
            fromX = transform_.offsetX;
            fromY = transform_.offsetY;
            if (ilSmartImage* const kept = ilSmartImage::from(transform_.color.get()))
                kept->shrinkBounds();
            box = boundsOf(transform_.color.get());
        } else {
            tighten();
            contentBounds(box, false);
            offset(&fromX, &fromY);
        }
        place_.pivotX = fromX + static_cast<float>(box.x) + static_cast<float>(box.nx / 2);
        place_.pivotY = fromY + static_cast<float>(box.y) + static_cast<float>(box.ny / 2);
    }
    if (x) *x = place_.pivotX;
    if (y) *y = place_.pivotY;
}

}  // namespace brushwork
