#include "blending/paint/soft_paint_ops.h"

#include "blending/paint/rect_copy.h"
#include "foundation/services/log.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_const_img.h"

namespace brushwork {

SoftPaintOps::SoftPaintOps(ilImage* image) : PaintOps(image) {}

SoftPaintOps::~SoftPaintOps() = default;

std::int32_t SoftPaintOps::setLocked(bool locked) {
    locked_ = locked;
    return done;
}

bool SoftPaintOps::locked() {
    return locked_;
}

std::int32_t SoftPaintOps::blendingChanges() {
    return done;
}

std::int32_t SoftPaintOps::rect_copy(std::int32_t x, std::int32_t y, std::int32_t width,
                                     std::int32_t height, const PaintSource& source,
                                     const PaintFormat& format, std::size_t rows, float zoomX,
                                     float zoomY) {
    RectCopy::Request request;
    request.target = image_.get();
    request.rectangle = flatTile(x, y, width, height);
    request.clip = clip_;
    request.source = source;
    request.format = format;
    request.rows = rows;
    if (zoomOff_ == 0) {
        request.painterZoomX = state_.zoomX;
        request.painterZoomY = state_.zoomY;
    }
    request.zoomX = zoomX;
    request.zoomY = zoomY;
    request.nearest = zoomNearest_;
    request.factors = state_.factors;
    request.scaleBias = state_.scaleBias;
    request.stroke = stroke_.get();
    request.mix = preview_;
    request.color = state_.color.data();
    request.lockAlpha = lockAlpha_ == 1;
    request.low = low_.get();
    switch (RectCopy(request, blends_).run()) {
        case RectCopy::Result::Drawn: return done;
        case RectCopy::Result::Nothing: break;
        case RectCopy::Result::NoPath:
            log("SoftPaintOps::rect_copy unable to blend due to image format incompatibilities\n");
            break;
        case RectCopy::Result::Failed: break;
    }
    return nothingDrawn;
}

// At the copying pair by the image layer: pages that are covered whole stay solid.
std::int32_t SoftPaintOps::fillRegion(const ilTile& box, const ilPixel& pixel) {
    if (!image_) return nothingDrawn;
    const ilTile part = clip_.isEmpty() ? box : intersection(box, clip_);
    if (part.isEmpty()) return nothingDrawn;
    if (state_.factors == pairCopy)
        return image_->fillRegion(part, pixel) == ImageOk ? done : nothingDrawn;
    const Ref<ilConstImg> constant(new ilConstImg(pixel));
    RectCopy::Request request;
    request.target = image_.get();
    request.rectangle = part;
    request.source = PaintSource::of(constant.get());
    request.factors = state_.factors;
    request.color = state_.color.data();
    request.lockAlpha = lockAlpha_ == 1;
    request.low = low_.get();
    return RectCopy(request, blends_).run() == RectCopy::Result::Drawn ? done : nothingDrawn;
}

std::int32_t SoftPaintOps::drawHook() {
    return done;
}

std::int32_t SoftPaintOps::setImage(ilImage* image) {
    if (image_ != image) stroke_.reset();
    return PaintOps::setImage(image);
}

std::int32_t SoftPaintOps::beginAccess() {
    return done;
}

std::int32_t SoftPaintOps::endAccess() {
    return done;
}

ilImage* SoftPaintOps::strokeImage() {
    return stroke_.get();
}

std::int32_t SoftPaintOps::setStrokeImage(ilImage* image) {
    stroke_ = Ref<ilImage>(image);
    return done;
}

std::int32_t SoftPaintOps::setPreview(bool preview) {
    preview_ = preview;
    return done;
}

bool SoftPaintOps::preview() {
    return preview_;
}

ilImage* SoftPaintOps::backup() {
    return backup_.get();
}

std::int32_t SoftPaintOps::setBackup(ilImage* image) {
    backup_ = Ref<ilImage>(image);
    return done;
}

std::int32_t SoftPaintOps::applyColorAdjust(const ilTile& box, const PixelChange& change) {
    if (!image_ || !change || !TargetBlock::canOpen(*image_)) return nothingDrawn;
    ilTile part = clip_.isEmpty() ? box : intersection(box, clip_);
    if (!ilSmartImage::isSmartImage(image_.get())) part = intersection(part, image_->box());
    if (part.isEmpty()) return nothingDrawn;
    const Ref<ilSPMemoryImg> pixels(new ilSPMemoryImg(part.nx, part.ny, image_->channels()));
    if (!pixels->data()) return nothingDrawn;
    const ilImageConfig config(TypeUChar, OrderInterleaved, image_->channels());
    if (image_->readRegion(part, pixels->data(), part, &config) != ImageOk || !change(*pixels))
        return nothingDrawn;
    // A change that turns the picture has nothing to give back.
    if (pixels->sizeX() != part.nx || pixels->sizeY() != part.ny || !pixels->data())
        return nothingDrawn;
    return image_->writeRegion(part, pixels->data(), part, &config) == ImageOk ? done
                                                                               : nothingDrawn;
}

float SoftPaintOps::mixRate0() {
    return mixRates_[0];
}

std::int32_t SoftPaintOps::setMixRate0(float rate) {
    mixRates_[0] = rate;
    return done;
}

float SoftPaintOps::mixRate1() {
    return mixRates_[1];
}

std::int32_t SoftPaintOps::setMixRate1(float rate) {
    mixRates_[1] = rate;
    return done;
}

float SoftPaintOps::mixRate2() {
    return mixRates_[2];
}

std::int32_t SoftPaintOps::setMixRate2(float rate) {
    mixRates_[2] = rate;
    return done;
}

std::int32_t SoftPaintOps::brushKind() {
    return brushKind_;
}

std::int32_t SoftPaintOps::setBrushKind(std::int32_t kind) {
    brushKind_ = kind;
    return done;
}

ilImage* SoftPaintOps::pendingStroke() {
    ilSmartImage* const stroke = ilSmartImage::from(stroke_.get());
    const bool isTargets = stroke && image_ && stroke->parentImage(0) == image_.get();
    return isTargets && !preview_ ? stroke : nullptr;
}

std::int32_t SoftPaintOps::commitStroke() {
    if (!pendingStroke()) return nothingDrawn;
    const std::int32_t pushed = ilSmartImage::from(stroke_.get())->pushToSource();
    if (pushed != ImageOk) return nothingDrawn;
    stroke_.reset();
    return done;
}

std::int32_t SoftPaintOps::setLockAlpha(std::int32_t lock) {
    lockAlpha_ = lock;
    return done;
}

std::int32_t SoftPaintOps::lockAlpha() {
    return lockAlpha_;
}

// Nothing waits here: every operation ends with its pixels in the target.
std::int32_t SoftPaintOps::flush() {
    return done;
}

std::int32_t SoftPaintOps::followUndo(bool undoIsOn) {
    if (!image_) return nothingDrawn;
    if (!undoIsOn) return pendingStroke() ? commitStroke() : done;
    if (!pendingStroke()) stroke_ = Ref<ilImage>(new ilSmartImage(image_.get()));
    return done;
}

std::int32_t SoftPaintOps::saveAlpha(const ilTile& stretch) {
    if (lockAlpha_ != 1 || !image_) return nothingDrawn;
    return kept_.save(*image_, low_.get(), stretch) ? done : nothingDrawn;
}

std::int32_t SoftPaintOps::restoreAlpha() {
    if (!image_) return nothingDrawn;
    return kept_.restore(*image_, low_.get()) ? done : nothingDrawn;
}

}  // namespace brushwork
