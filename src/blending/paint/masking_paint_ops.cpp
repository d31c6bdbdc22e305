#include "blending/paint/masking_paint_ops.h"

#include "blending/paint/soft_paint_ops.h"

namespace brushwork {

MaskingPaintOps::MaskingPaintOps() = default;

MaskingPaintOps::~MaskingPaintOps() {
    if (inBatch_) MaskingPaintOps::endAccess();
}

template <class Draw>
std::int32_t MaskingPaintOps::guarded(const ilTile& box, const Draw& draw) {
    if (!child()) return draw();
    if (guard_.forbids(box) || !guard_.protect(image(), box)) return nothingDrawn;
    const std::int32_t result = draw();
    if (!inBatch_) restore();
    return result;
}

void MaskingPaintOps::restore() {
    if (child())
        guard_.restore(*child());
    else
        guard_.reset();
}

std::int32_t MaskingPaintOps::fillRegion(const ilTile& box, const ilPixel& pixel) {
    return guarded(box, [&] { return PaintOps::fillRegion(box, pixel); });
}

std::int32_t MaskingPaintOps::rect_copy(std::int32_t x, std::int32_t y, std::int32_t width,
                                        std::int32_t height, const PaintSource& source,
                                        const PaintFormat& format, std::size_t rows, float zoomX,
                                        float zoomY) {
    ilTile box;
    if (!place(x, y, width, height, box)) return nothingDrawn;
    return guarded(box, [&] {
        return PaintOps::rect_copy(x, y, width, height, source, format, rows, zoomX, zoomY);
    });
}

std::int32_t MaskingPaintOps::applyColorAdjust(const ilTile& box, const PixelChange& change) {
    return guarded(box, [&] { return PaintOps::applyColorAdjust(box, change); });
}

void MaskingPaintOps::bounds(ilTile& box) {
    PaintOps::bounds(box);
    if (!guard_.mask() || guard_.fillValue() != 255.0) return;
    box = intersection(box, guard_.area());
    if (box.isEmpty()) box = {};
}

std::int32_t MaskingPaintOps::setImage(ilImage* image) {
    if (inBatch_) endAccess();
    return PaintOps::setImage(image);
}

std::int32_t MaskingPaintOps::beginAccess() {
    if (inBatch_) endAccess();
    guard_.reset();
    inBatch_ = true;
    return PaintOps::beginAccess();
}

std::int32_t MaskingPaintOps::endAccess() {
    const std::int32_t result = PaintOps::endAccess();
    if (inBatch_) {
        inBatch_ = false;
        restore();
    }
    return result;
}

void MaskingPaintOps::makeDisplay(ilImage& target) {
    if (displayImage_ && displayImage_->channels() == target.channels()) return;
    const ilPixel empty(TypeUChar, target.channels());
    displayImage_ = Ref<ilSmartImage>(new ilSmartImage(empty));
    displayOps_ = Ref<PaintOps>(new SoftPaintOps(displayImage_.get()));
    displayOps_->setBlendFactors(pairOver.source, pairOver.target);
}

ilImage* MaskingPaintOps::imageForRead(const ilTile& box) {
    ilImage* const target = image();
    if (!target || !guard_.isActive()) return target;
    makeDisplay(*target);
    const std::int32_t copied =
        displayImage_->copyRegion(box, *target, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
    if (copied != ImageOk && copied != ImageClipped) return target;
    guard_.layOver(*displayOps_, box);
    return displayImage_.get();
}

std::int32_t MaskingPaintOps::setInner(PaintOps* inner) {
    if (inBatch_) endAccess();
    setChild(inner);
    return done;
}

std::int32_t MaskingPaintOps::setMask(ilImage* image, std::int32_t x, std::int32_t y) {
    if (image && image->channels() != 1) return nothingDrawn;
    guard_.setOffset(x, y);
    if (!image || inBatch_) return done;
    guard_.setMask(image);
    if (maskSource_ != image) maskSource_ = Ref<ilImage>(image);
    return done;
}

}  // namespace brushwork
