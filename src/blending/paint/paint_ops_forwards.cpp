// The slots that PaintOps has only for its child.
#include "blending/paint/paint_ops.h"

namespace brushwork {

std::int32_t PaintOps::setLocked(bool locked) {
    return child_ ? child_->setLocked(locked) : -1;
}

bool PaintOps::locked() {
    return child_ && child_->locked();
}

std::int32_t PaintOps::blendingChanges() {
    return child_ ? child_->blendingChanges() : -1;
}

std::int32_t PaintOps::fillRegion(const ilTile& box, const ilPixel& pixel) {
    return child_ ? child_->fillRegion(box, pixel) : -1;
}

std::int32_t PaintOps::rect_copy(std::int32_t x, std::int32_t y, std::int32_t width,
                                 std::int32_t height, const PaintSource& source,
                                 const PaintFormat& format, std::size_t rows, float zoomX,
                                 float zoomY) {
    if (!child_) return -1;
    return child_->rect_copy(x, y, width, height, source, format, rows, zoomX, zoomY);
}

std::int32_t PaintOps::drawHook() {
    return child_ ? child_->drawHook() : -1;
}

std::int32_t PaintOps::beginAccess() {
    return child_ ? child_->beginAccess() : -1;
}

std::int32_t PaintOps::endAccess() {
    return child_ ? child_->endAccess() : -1;
}

ilImage* PaintOps::strokeImage() {
    return child_ ? child_->strokeImage() : nullptr;
}

std::int32_t PaintOps::setStrokeImage(ilImage* image) {
    return child_ ? child_->setStrokeImage(image) : -1;
}

std::int32_t PaintOps::setPreview(bool preview) {
    return child_ ? child_->setPreview(preview) : -1;
}

bool PaintOps::preview() {
    return child_ && child_->preview();
}

ilImage* PaintOps::backup() {
    return child_ ? child_->backup() : nullptr;
}

std::int32_t PaintOps::setBackup(ilImage* image) {
    return child_ ? child_->setBackup(image) : -1;
}

std::int32_t PaintOps::applyColorAdjust(const ilTile& box, const PixelChange& change) {
    return child_ ? child_->applyColorAdjust(box, change) : -1;
}

bool PaintOps::isMarker() {
    return brushKind() == 1;
}

std::int32_t PaintOps::setMarker(bool marker) {
    return setBrushKind(marker ? 1 : 0);
}

float PaintOps::mixRate0() {
    return child_ ? child_->mixRate0() : -1.0F;
}

std::int32_t PaintOps::setMixRate0(float rate) {
    return child_ ? child_->setMixRate0(rate) : -1;
}

float PaintOps::mixRate1() {
    return child_ ? child_->mixRate1() : -1.0F;
}

std::int32_t PaintOps::setMixRate1(float rate) {
    return child_ ? child_->setMixRate1(rate) : -1;
}

float PaintOps::mixRate2() {
    return child_ ? child_->mixRate2() : -1.0F;
}

std::int32_t PaintOps::setMixRate2(float rate) {
    return child_ ? child_->setMixRate2(rate) : -1;
}

bool PaintOps::isWet() {
    return brushKind() > 0;
}

bool PaintOps::isGlow() {
    return brushKind() == 9;
}

bool PaintOps::isSmudge() {
    return brushKind() == 2;
}

bool PaintOps::isColorSmudge() {
    return brushKind() == 3;
}

bool PaintOps::isPastel() {
    return brushKind() == 6;
}

bool PaintOps::isMarkerColorless() {
    return brushKind() == 4;
}

std::int32_t PaintOps::brushKind() {
    return child_ ? child_->brushKind() : -1;
}

std::int32_t PaintOps::setBrushKind(std::int32_t kind) {
    return child_ ? child_->setBrushKind(kind) : -1;
}

ilImage* PaintOps::pendingStroke() {
    return child_ ? child_->pendingStroke() : nullptr;
}

std::int32_t PaintOps::commitStroke() {
    return child_ ? child_->commitStroke() : -1;
}

std::int32_t PaintOps::setLockAlpha(std::int32_t lock) {
    return child_ ? child_->setLockAlpha(lock) : -1;
}

std::int32_t PaintOps::lockAlpha() {
    return child_ ? child_->lockAlpha() : -1;
}

std::int32_t PaintOps::flush() {
    return child_ ? child_->flush() : -1;
}

}  // namespace brushwork
