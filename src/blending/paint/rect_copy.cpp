#include "blending/paint/rect_copy.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "image/smart/il_smart_image.h"
#include "image/work/il_const_img.h"
#include "image/work/il_memory_img.h"

namespace brushwork {
namespace {

using paint::ConstantPixel;
using paint::Coverage;
using paint::PaintRow;

// Of any pixel from the origin.
constexpr std::int32_t farthest = 1 << 29;
// Smart images take what lies inside this.
constexpr ilTile smartPlane = flatTile(-102400, -102400, 204800, 204800);

bool isDone(std::int32_t result) {
    return result == ImageOk || result == ImageClipped;
}

std::int32_t floorToSide(std::int32_t place) {
    return place & ~(TargetBlock::side - 1);
}

// Source pixels that a span shows.
std::int32_t shownPixels(std::int32_t extent, float stretch) {
    const double shown = std::ceil(static_cast<double>(extent) / static_cast<double>(stretch));
    return static_cast<std::int32_t>(std::clamp(shown, 1.0, static_cast<double>(farthest)));
}

bool isZoom(float zoom) {
    return zoom > 0.00001F && zoom < 100000.0F;
}

}  // namespace

RectCopy::Result RectCopy::run() {
    if (!request_.target || (!request_.source.image && !request_.source.pixels))
        return Result::Nothing;
    if (!isZoom(request_.painterZoomX) || !isZoom(request_.painterZoomY) ||
        !isZoom(request_.zoomX) || !isZoom(request_.zoomY)) {
        return Result::Nothing;
    }
    const ilTile& r = request_.rectangle;
    const PaintSource& source = request_.source;
    if (std::max(std::abs(source.x), std::abs(source.y)) > farthest) return Result::Nothing;
    ZoomedSpan across, up;
    if (!zoomSpan(r.x, r.nx, request_.painterZoomX, across) ||
        !zoomSpan(r.y, r.ny, request_.painterZoomY, up)) {
        return Result::Nothing;
    }
    placed_ = flatTile(across.start, up.start, across.extent, up.extent);
    if (placed_.isEmpty()) return Result::Nothing;
    box_ = request_.clip.isEmpty() ? placed_ : intersection(placed_, request_.clip);
    const bool isSmart = ilSmartImage::isSmartImage(request_.target);
    box_ = intersection(box_, isSmart ? smartPlane : request_.target->box());
    if (box_.isEmpty()) return Result::Nothing;

    // What is read must not change under the reader.
    Ref<ilImage> heldSource, heldStroke;
    separateFromTarget(heldSource, request_.source.image);
    separateFromTarget(heldStroke, request_.stroke);

    channels_ = request_.target->channels();
    if (!setUpSource()) return isPlainCopy() ? copyPlainly() : Result::NoPath;
    if (isPlainCopy()) return copyPlainly();
    if (!TargetBlock::canOpen(*request_.target) || !chooseRow()) return Result::NoPath;
    return drawBlocks();
}

void RectCopy::separateFromTarget(Ref<ilImage>& held, ilImage*& image) const {
    if (image != request_.target) return;
    if (ilSmartImage* const smart = ilSmartImage::from(image))
        held = smart->clone();
    else
        held = Ref<ilImage>(new ilMemoryImg(image));
    if (held) image = held.get();
}

bool RectCopy::isPlainCopy() const {
    return request_.factors == pairCopy && request_.painterZoomX * request_.zoomX == 1.0F &&
           request_.painterZoomY * request_.zoomY == 1.0F && request_.scaleBias.isNeutral() &&
           source_.image() != nullptr && mapFits();
}

// Whether every channel of the target gets one that the source has.
bool RectCopy::mapFits() const {
    if (request_.format.isIdentity()) return true;
    if (channels_ > 4) return false;
    const auto& map = request_.format.map;
    const std::int32_t has = source_.image()->channels();
    return std::all_of(map.begin(), map.begin() + channels_,
                       [has](std::int32_t entry) { return entry >= 0 && entry < has; });
}

bool RectCopy::setUpSource() {
    const ilTile& r = request_.rectangle;
    SourceBlocks::Setup setup;
    setup.source = request_.source;
    setup.format = request_.format;
    setup.rows = request_.rows;
    setup.targetChannels = channels_;
    setup.coordSpace = request_.target->coordSpace();
    setup.x = {static_cast<double>(request_.painterZoomX), static_cast<double>(r.x),
               static_cast<double>(request_.zoomX), request_.source.x,
               shownPixels(r.nx, request_.zoomX)};
    setup.y = {static_cast<double>(request_.painterZoomY), static_cast<double>(r.y),
               static_cast<double>(request_.zoomY), request_.source.y,
               shownPixels(r.ny, request_.zoomY)};
    setup.memoryWidth = setup.x.extent;
    setup.memoryHeight = setup.y.extent;
    if (!request_.source.image)
        setup.source.x = setup.source.y = setup.x.origin = setup.y.origin = 0;
    setup.nearest = request_.nearest;
    setup.scaleBias = request_.scaleBias;
    return source_.begin(setup);
}

// In one call of the image layer.
RectCopy::Result RectCopy::copyPlainly() {
    ilImage& from = *source_.image();
    const bool isMemory = request_.source.image == nullptr;
    const std::int32_t x = (isMemory ? 0 : request_.source.x) + (box_.x - placed_.x);
    const std::int32_t y = (isMemory ? 0 : request_.source.y) + (box_.y - placed_.y);
    const bool isConstant = from.isKindOf(ilConstImg::descriptor) != 0;
    if (isConstant && request_.format.isIdentity() && from.channels() == channels_) {
        // Pages that are covered whole stay solid.
        const bool filled = isDone(request_.target->fillRegion(box_, from.fill()));
        return filled ? Result::Drawn : Result::Failed;
    }
    ilImageConfig map;
    map.channels = channels_;
    map.channelList = request_.format.map.data();
    const std::int32_t copied = request_.target->copyRegion(
        box_, from, x, y, 0, request_.format.isIdentity() ? nullptr : &map,
        CopyDirection::FromOther);
    return isDone(copied) ? Result::Drawn : Result::Failed;
}

bool RectCopy::chooseRow() {
    const bool isCoverage = source_.channels() == 1 && (channels_ == 4 || request_.mix);
    if (!isCoverage) {
        row_ = paint::rowFunction(source_.channels(), channels_, request_.factors);
        keepsAlpha_ = request_.lockAlpha && channels_ == 4 && request_.factors == pairOver;
        return row_ != nullptr;
    }
    usesStroke_ = request_.stroke != nullptr && request_.factors == pairOver;
    const bool mixes = request_.mix && usesStroke_;
    if (!mixes && channels_ == 1) {
        row_ = paint::rowFunction(1, 1, request_.factors);
        usesStroke_ = false;
        return row_ != nullptr;
    }
    coverage_ = mixes ? Coverage::Mix : Coverage::Through;
    row_ = paint::rowFunction(channels_, channels_, request_.factors, coverage_);
    keepsAlpha_ = request_.lockAlpha && request_.factors == pairOver && !mixes;
    if (request_.color)
        for (std::size_t c = 0; c < 4; ++c)
            colorPixel_[c] = static_cast<std::uint8_t>(request_.color[c]);
    if (!usesStroke_) return row_ != nullptr;
    SourceBlocks::Setup setup;
    setup.source = PaintSource::of(request_.stroke);
    setup.targetChannels = channels_;
    setup.coordSpace = request_.target->coordSpace();
    return row_ != nullptr && strokeBlocks_.begin(setup) && strokeBlocks_.channels() == channels_;
}

RectCopy::Result RectCopy::drawBlocks() {
    block_.emplace(*request_.target);
    const bool direct =
        block_->isWhole() && source_.isDirect() && (!usesStroke_ || strokeBlocks_.isDirect());
    if (direct && !keepsAlpha_) return drawBlock(box_) ? Result::Drawn : Result::Failed;
    bool whole = true;
    for (std::int32_t y = floorToSide(box_.y); y < box_.endY(); y += TargetBlock::side) {
        for (std::int32_t x = floorToSide(box_.x); x < box_.endX(); x += TargetBlock::side) {
            const ilTile cell = flatTile(x, y, TargetBlock::side, TargetBlock::side);
            whole = drawBlock(intersection(cell, box_)) && whole;
        }
    }
    return whole ? Result::Drawn : Result::Failed;
}

bool RectCopy::drawBlock(const ilTile& box) {
    const SourceBlock source = source_.block(box);
    if (!source.pixels) return false;
    if (source.constant) {
        if (const std::optional<bool> drawn = drawConstant(box, source)) return *drawn;
    }
    SourceBlock colors;
    if (usesStroke_) {
        colors = strokeBlocks_.block(box);
        if (!colors.pixels) return false;
    }
    SoftLockedAlpha kept;
    if (keepsAlpha_ && !kept.save(*request_.target, request_.low, box)) return false;
    if (!block_->open(box)) return false;
    drawRows(box, source, colors);
    const bool wrote = block_->close();
    return keepsAlpha_ ? kept.restore(*request_.target, request_.low) && wrote : wrote;
}

// What one value decides without a look at pixels; empty if it doesn't.
std::optional<bool> RectCopy::drawConstant(const ilTile& box, const SourceBlock& source) {
    if (coverage_ == Coverage::Alpha) {
        if (paint::leavesTarget(request_.factors, source.pixels, source_.channels())) return true;
    } else if (request_.factors == pairOver) {
        if (source.pixels[0] == 0) return true;
        if (coverage_ == Coverage::Mix && source.pixels[0] == 255)
            return isDone(request_.target->copyRegion(box, *strokeBlocks_.image(), box.x, box.y, 0,
                                                      nullptr, CopyDirection::FromOther));
    }
    ilSmartImage* const target = ilSmartImage::from(request_.target);
    std::uint32_t word = 0;
    if (!target || usesStroke_ || keepsAlpha_ || !target->isSolid(box, word, false)) return {};
    std::uint8_t before[4], after[4];
    for (int c = 0; c < 4; ++c) before[c] = after[c] = static_cast<std::uint8_t>(word >> 8 * c);
    const ConstantPixel pixel(source.pixels, source_.channels());
    const ConstantPixel color(colorPixel_, 4);
    PaintRow row;
    row.target = after;
    row.count = 1;
    row.constantSource = row.constantCoverage = true;
    row.source = coverage_ == Coverage::Alpha ? pixel.data() : color.data();
    row.coverage = pixel.data();
    row_(row);
    if (std::memcmp(before, after, static_cast<std::size_t>(channels_)) == 0) return true;
    return target->fillRegion(box, ilPixel(TypeUChar, channels_, after)) == ImageOk;
}

void RectCopy::drawRows(const ilTile& box, const SourceBlock& source, const SourceBlock& colors) {
    const auto width = static_cast<std::size_t>(box.nx);
    const auto height = static_cast<std::size_t>(box.ny);
    const bool isCoverage = coverage_ != Coverage::Alpha;
    const ConstantPixel constant(source.pixels, source_.channels());
    const ConstantPixel color(usesStroke_ && colors.constant ? colors.pixels : colorPixel_,
                              channels_);
    const bool constantColor = !usesStroke_ || colors.constant;
    if (!isCoverage && channels_ == 4 && source_.channels() == 4 && request_.factors == pairOver) {
        const Ref<blender::Base<>> over = blends_.get(blender::ImageBlendKind::Normal);
        over->width = static_cast<std::uint32_t>(box.nx);
        over->height = static_cast<std::uint32_t>(box.ny);
        over->destination = reinterpret_cast<std::uint32_t*>(block_->pixels());
        over->destinationStride = static_cast<std::int32_t>(block_->rowBytes() / 4);
        // Only read from.
        over->source = reinterpret_cast<std::uint32_t*>(const_cast<std::uint8_t*>(source.pixels));
        over->sourceStride = static_cast<std::int32_t>(source.rowBytes / 4);
        over->constantSource = source.constant;
        std::memcpy(&over->constantPixel, constant.data(), 4);
        over->blend();
        over->destination = over->source = nullptr;
        return;
    }
    const auto sourceBytes = static_cast<std::size_t>(source_.channels());
    const auto targetBytes = static_cast<std::size_t>(channels_);
    const bool merges = block_->rowBytes() == width * targetBytes &&
                        (source.constant || source.rowBytes == width * sourceBytes) &&
                        (constantColor || colors.rowBytes == width * targetBytes);
    PaintRow row;
    row.count = merges ? width * height : width;
    row.constantSource = isCoverage ? constantColor : source.constant;
    row.constantCoverage = source.constant;
    for (std::size_t y = 0; y < (merges ? 1 : height); ++y) {
        const std::uint8_t* const drawn =
            source.constant ? constant.data() : source.pixels + y * source.rowBytes;
        row.target = block_->pixels() + y * block_->rowBytes();
        row.coverage = drawn;
        row.source = !isCoverage     ? drawn
                     : constantColor ? color.data()
                                     : colors.pixels + y * colors.rowBytes;
        row_(row);
    }
}

}  // namespace brushwork
