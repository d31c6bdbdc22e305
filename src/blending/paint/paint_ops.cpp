#include "blending/paint/paint_ops.h"

#include <algorithm>

#include "blending/paint/soft_edge_box.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

PaintOps::PaintOps(ilImage* image) : image_(image) {}

PaintOps::~PaintOps() = default;

std::int32_t PaintOps::clear() {
    ilTile box;
    bounds(box);
    if (box.isEmpty()) return image() ? nothingDrawn : done;
    const BlendFactors factors = blendFactors();
    setBlendFactors(pairCopy.source, pairCopy.target);
    const std::int32_t result = fill(box);
    setBlendFactors(factors.source, factors.target);
    return result;
}

std::int32_t PaintOps::setColor(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                std::uint32_t fourth) {
    if (child_) return child_->setColor(first, second, third, fourth);
    state_.color = {first, second, third, fourth};
    return done;
}

std::int32_t PaintOps::setColor(const std::uint32_t* words) {
    if (!words) return nothingDrawn;
    if (child_) return child_->setColor(words);
    const std::size_t count = channels() == 4 ? 4 : 1;
    std::copy(words, words + count, state_.color.begin());
    return done;
}

std::int32_t PaintOps::enableBlend(bool enable) {
    if (child_) return child_->enableBlend(enable);
    blendingChanges();
    state_.writeEnable = enable;
    return setBlendFactors(enable ? FactorZero : FactorOne, FactorOneLessSourceAlpha);
}

std::int32_t PaintOps::setBlendFactors(std::int32_t source, std::int32_t target) {
    if (child_) return child_->setBlendFactors(source, target);
    state_.factors = {source, target};
    return done;
}

BlendFactors PaintOps::blendFactors() {
    return child_ ? child_->blendFactors() : state_.factors;
}

std::int32_t PaintOps::readPixels(std::int32_t x, std::int32_t y, std::int32_t width,
                                  std::int32_t height, void* buffer, const PaintFormat& format) {
    const ilTile box = flatTile(x, y, width, height);
    if (!buffer || box.isEmpty()) return nothingDrawn;
    ilImage* const from = imageForRead(box);
    if (!from) return nothingDrawn;
    const std::int32_t count = format.channels > 0 ? format.channels : from->channels();
    ilImageConfig config(format.type, OrderInterleaved, count);
    if (!format.isIdentity() && count <= 4) config.channelList = format.map.data();
    return from->readRegion(box, buffer, box, &config) == ImageOk ? done : nothingDrawn;
}

std::int32_t PaintOps::drawImage(ilImage* source, std::int32_t x, std::int32_t y) {
    if (!source) return -1;
    ilTile all = source->box();
    if (ilSmartImage* const smart = ilSmartImage::from(source)) smart->bounds(all);
    return rect_copy(x, y, all.nx, all.ny, PaintSource::of(source, all.x, all.y), {}, 0, 1.0F,
                     1.0F);
}

ilImage* PaintOps::image() {
    return child_ ? child_->image() : image_.get();
}

void PaintOps::bounds(ilTile& box) {
    if (child_) return child_->bounds(box);
    box = clip_;
    if (!box.isEmpty() || !image_) return;
    if (ilSmartImage* const smart = ilSmartImage::from(image_.get()))
        smart->bounds(box);
    else
        box = image_->box();
}

std::int32_t PaintOps::pushZoomOff(bool off) {
    if (child_) return child_->pushZoomOff(off);
    if (!off)
        zoomOff_ = std::max(zoomOff_ - 1, 0);
    else if (state_.zoomX == 1.0F && state_.zoomY == 1.0F)
        ++zoomOff_;
    return zoomOff_;
}

bool PaintOps::isUnzoomed() {
    return child_ ? child_->isUnzoomed() : zoomOff_ > 0;
}

std::int32_t PaintOps::setImage(ilImage* image) {
    if (child_) return child_->setImage(image);
    image_ = Ref<ilImage>(image);
    return done;
}

std::int32_t PaintOps::setBounds(const ilTile& box) {
    if (child_) return child_->setBounds(box);
    clip_ = box.isEmpty() ? ilTile{} : box;
    return done;
}

std::int32_t PaintOps::channels() {
    ilImage* const target = image();
    return target ? target->channels() : -1;
}

std::int32_t PaintOps::setFill(const ilPixel& pixel) {
    if (child_) return child_->setFill(pixel);
    return image_ ? image_->setFill(pixel) : -1;
}

ilImage* PaintOps::imageForRead(const ilTile& box) {
    return child_ ? child_->imageForRead(box) : image_.get();
}

const std::uint32_t* PaintOps::color() {
    return child_ ? child_->color() : state_.color.data();
}

const std::uint32_t* PaintOps::color(std::int32_t& count) {
    count = channels();
    return color();
}

std::int32_t PaintOps::setZoom(float x, float y) {
    if (child_) return child_->setZoom(x, y);
    if (!(x > 0.0F) || !(y > 0.0F)) return nothingDrawn;
    state_.zoomX = x;
    state_.zoomY = y;
    return done;
}

std::int32_t PaintOps::setScaleBias(const ScaleBias& scaleBias) {
    if (child_) return child_->setScaleBias(scaleBias);
    state_.scaleBias = scaleBias;
    return done;
}

// Through rect_copy, so that whoever watches that sees this, too.
std::int32_t PaintOps::drawSoftBox(const ilTile& box, std::int32_t border) {
    ilImage* const target = image();
    if (!target) return -1;
    const Ref<ilMemoryImg> coverage = softEdgeBox(box, border);
    if (!coverage) return nothingDrawn;
    if (target->channels() == 1) {
        // One channel is its own coverage.
        const auto level = static_cast<std::uint8_t>(*color());
        std::uint8_t* const bytes = coverage->data();
        for (std::size_t i = 0; i < coverage->byteSize(); ++i)
            bytes[i] = static_cast<std::uint8_t>((bytes[i] * level + 127) / 255);
    }
    // A coverage is nothing to copy.
    const BlendFactors factors = blendFactors();
    if (factors == pairCopy) setBlendFactors(pairOver.source, pairOver.target);
    const Ref<ilImage> stroke(strokeImage());
    if (stroke) setStrokeImage(nullptr);
    const std::int32_t result =
        rect_copy(box.x - border, box.y - border, coverage->sizeX(), coverage->sizeY(),
                  PaintSource::of(coverage.get()), {}, 0, 1.0F, 1.0F);
    if (stroke) setStrokeImage(stroke.get());
    if (factors == pairCopy) setBlendFactors(factors.source, factors.target);
    return result;
}

std::int32_t PaintOps::fill(const ilTile& box) {
    ilImage* const target = image();
    if (!target) return -1;
    ilTile within;
    bounds(within);
    const bool isSmart = ilSmartImage::isSmartImage(target);
    const bool limited = !isSmart || !clip().isEmpty();
    const ilTile part = limited ? intersection(box, within) : box;
    if (part.isEmpty()) return nothingDrawn;
    const std::uint32_t* const words = color();
    ilPixel pixel(TypeUChar, channels() == 4 ? 4 : 1);
    for (std::int32_t c = 0; c < pixel.channels(); ++c)
        pixel.data()[c] = static_cast<std::uint8_t>(words[c]);
    return fillRegion(part, pixel);
}

std::int32_t PaintOps::beginBatch() {
    return beginAccess();
}

std::int32_t PaintOps::endBatch() {
    const std::int32_t flushed = flush();
    const std::int32_t ended = endAccess();
    return flushed == done ? ended : flushed;
}

const ilTile& PaintOps::clip() const {
    return child_ ? child_->clip() : clip_;
}

const PaintState& PaintOps::state() const {
    return child_ ? child_->state() : state_;
}

bool PaintOps::place(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                     ilTile& box) const {
    if (child_) return child_->place(x, y, width, height, box);
    const bool unzoomed = zoomOff_ > 0;
    ZoomedSpan across, up;
    if (!zoomSpan(x, width, unzoomed ? 1.0F : state_.zoomX, across) ||
        !zoomSpan(y, height, unzoomed ? 1.0F : state_.zoomY, up)) {
        return false;
    }
    box = flatTile(across.start, up.start, across.extent, up.extent);
    return !box.isEmpty();
}

}  // namespace brushwork
