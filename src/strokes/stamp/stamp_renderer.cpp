#include "strokes/stamp/stamp_renderer.h"

#include "blending/modes/blender_registry.h"
#include "strokes/path/stamp_ranges.h"

namespace brushwork::npc {

StampRenderer::StampRenderer(ilImage* high, ilImage* low)
    : stamp_(makeRef<Stamp>()), high_(high), low_(low), maker_(makeRef<StampImageCache>()) {
    takeBrush(BrushParameters::defaults());
}

StampRenderer::~StampRenderer() {
    layWaiting();
}

void StampRenderer::begin(BlendModeId mode) {
    if (begun_) return;
    blendMode_ = mode;
    const bool fits = spare_ && spare_->mode() == static_cast<std::int32_t>(mode);
    blender_ = fits ? std::move(spare_) : createBlender(mode);
    if (!blender_) return;
    begun_ = true;
    blender_->setThreaded(true);
    // The canvas is read between the stamps of a brush that drags it.
    if (!brush_.smearEnabled) blender_->holdPages();
    bound_ = {};
    bindTargets();
    blender_->setLockAlpha(lockAlpha_);
    setModeParameters(*blender_, brush_);
    stamp_->setShapeObject(brush_.shapeObject);
    stamp_->setColorObject(brush_.colorObject);
    began();
}

void StampRenderer::end() {
    if (!begun_) return;
    layWaiting();
    ending();
    maker_.freeTables();
    blender_->reset();
    spare_ = std::move(blender_);
    begun_ = false;
}

void StampRenderer::bindTargets() {
    blender_->setDestination(high_.get(), 0, 0);
    blender_->setSecondDestination(low_.get(), 0, 0);
}

StampPoint StampRenderer::quantized(const StampPoint& point) const {
    return quantizedStamp(point, growth_);
}

ilTile StampRenderer::renderPoint(const StampPoint& point) {
    stamp_->setRadiusAndOpacity(clampedStampRadius(point.radius), point.opacity);
    return renderStamp(quantized(point));
}

ilTile StampRenderer::renderStamp(const StampPoint& stamp) {
    if (!begun_) return {};
    refreshTip();
    const StampImages& images = maker_.make(stamp);
    if (!images.mask) return {};
    if (mayWait(images)) {
        if (batch_.isFull()) layWaiting();
        batch_.add({images, stamp});
    } else {
        layWaiting();
        lay(images, stamp);
    }
    return images.box;
}

// Where nothing else reads the target before the end, nor writes to what the stamp is laid with.
bool StampRenderer::mayWait(const StampImages& images) const {
    return StampBatch::isWorthIt(images) && !carriesPaint(blendMode_) && !brush_.smearEnabled &&
           maker_.keepsImages() && !source_.isGiven() && !hasTexture(brush_) && high_ &&
           high_->imageKind() == KindSmart && (!low_ || low_->imageKind() == KindSmart);
}

// One alone is shared by the blender itself.
void StampRenderer::layWaiting() {
    if (batch_.count() == 0) return;
    if (batch_.count() == 1)
        lay(batch_.stamp(0).images, batch_.stamp(0).point);
    else
        batch_.lay({high_.get(), low_.get(), blendMode_, &brush_, color_, lockAlpha_});
    batch_.clear();
}

void StampRenderer::lay(const StampImages& images, const StampPoint& stamp) {
    const bool textured = hasTexture(brush_);
    std::uint8_t* const mask = textured
                                   ? texture_.apply(brush_, images, stamp.textureStrength)->data()
                                   : images.maskPixels;
    blender_->setPlainMask(mask, images.maskStride, images.box.x, images.box.y);
    bindFor(images, stamp);
    if (carriesPaint(blendMode_)) {
        blender_->run(images.box);
    } else {
        // A mask of its own is 0 up to the end of its rows. Pixels of a locked alpha are fitted to
        // it also where the mask is 0.
        ilTile room = images.inked;
        if (!textured && !lockAlpha_) {
            room.x = images.box.x;
            room.nx = images.maskStride;
        }
        blender_->run(images.inked, room);
    }
}

// What stays from stamp to stamp is bound once.
void StampRenderer::bindFor(const StampImages& images, const StampPoint& stamp) {
    const bool constant = !images.color && !source_.isGiven();
    if (!constant || !bound_.constantSource) bindSource(*blender_, source_, images, color_);
    bound_.constantSource = constant;
    if (stamp.opacity == bound_.opacity && stamp.flow == bound_.flow) return;
    setStampValues(*blender_, stamp.opacity, stamp.flow);
    bound_.opacity = stamp.opacity;
    bound_.flow = stamp.flow;
}

// The maker drops what it keeps when the brush changes, so it is told only then.
void StampRenderer::refreshTip() {
    StampColors colors = StampColors::Kept;
    if (source_.isGiven() || !brush_.colorObject)
        colors = StampColors::None;
    else if (carriesPaint(blendMode_))
        colors = StampColors::Fresh;
    if (!tipChanged_ && maker_.tip().colors == colors) return;
    maker_.setTip(stampTipOf(brush_, colors));
    tipChanged_ = false;
}

void StampRenderer::setParameters(const BrushParameters* brush) {
    const bool again = begun_;
    end();
    takeBrush(brush ? *brush : BrushParameters::defaults());
    paramsChanged();
    if (again) begin(blendMode_);
}

void StampRenderer::takeBrush(const BrushParameters& brush) {
    brush_ = brush;
    color_ = packedColor(brush_.color);
    growth_ = radiusGrowth({hardness(), brush_.proceduralTip, brush_.smearEnabled});
    tipChanged_ = true;
}

void StampRenderer::setColor(const std::array<float, 4>& color) {
    BrushParameters brush = brush_;
    brush.color = color;
    setParameters(&brush);
}

void StampRenderer::setSource(ilImage* high, ilImage* low, bool pinned, std::int32_t x,
                              std::int32_t y) {
    layWaiting();
    const auto place = pinned ? StampSource::Place::Layer : StampSource::Place::Corner;
    source_ = {Ref<ilImage>(high), Ref<ilImage>(low), place, x, y};
}

void StampRenderer::setCarriedSource(ilImage* high, ilImage* low) {
    layWaiting();
    source_ = {Ref<ilImage>(high), Ref<ilImage>(low), StampSource::Place::Middle, 0, 0};
}

void StampRenderer::setLockAlpha(bool on) {
    if (on == lockAlpha_) return;
    layWaiting();
    lockAlpha_ = on;
    if (begun_) blender_->setLockAlpha(on);
}

void StampRenderer::setTargets(ilImage* high, ilImage* low) {
    layWaiting();
    high_ = Ref<ilImage>(high);
    low_ = Ref<ilImage>(low);
    if (begun_) bindTargets();
}

}  // namespace brushwork::npc
