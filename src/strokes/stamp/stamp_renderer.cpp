#include "strokes/stamp/stamp_renderer.h"

#include "blending/modes/blender_registry.h"
#include "strokes/path/stamp_ranges.h"

namespace brushwork::npc {

StampRenderer::StampRenderer(ilImage* high, ilImage* low)
    : brush_(BrushParameters::defaults()),
      stamp_(makeRef<Stamp>()),
      high_(high),
      low_(low),
      color_(packedColor(brush_.color)),
      maker_(makeRef<StampImageCache>()) {}

StampRenderer::~StampRenderer() = default;

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
    bindTargets();
    setModeParameters(*blender_, brush_);
    stamp_->setShapeObject(brush_.shapeObject);
    stamp_->setColorObject(brush_.colorObject);
    color_ = packedColor(brush_.color);
    began();
}

void StampRenderer::end() {
    if (!begun_) return;
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
    return quantizedStamp(point, {hardness(), brush_.proceduralTip, brush_.smearEnabled});
}

ilTile StampRenderer::renderPoint(const StampPoint& point) {
    stamp_->beginChanges();
    stamp_->setRadius(clampedStampRadius(point.radius));
    stamp_->setOpacity(point.opacity);
    stamp_->endChanges();
    return renderStamp(quantized(point));
}

ilTile StampRenderer::renderStamp(const StampPoint& stamp) {
    if (!begun_) return {};
    refreshTip();
    const StampImages& images = maker_.make(stamp);
    if (!images.mask) return {};
    ilSPMemoryImg* const mask = texture_.apply(brush_, images, stamp.textureStrength);
    blender_->setPlainMask(mask->data(), mask->sizeX(), images.box.x, images.box.y);
    bindSource(*blender_, source_, images, color_);
    setStampValues(*blender_, stamp);
    blender_->setLockAlpha(lockAlpha_);
    if (carriesPaint(blendMode_)) {
        blender_->run(images.box);
    } else {
        // A mask of its own is 0 up to the end of its rows. Pixels of a locked alpha are fitted to
        // it also where the mask is 0.
        ilTile room = images.inked;
        if (mask == images.mask && !lockAlpha_) {
            room.x = images.box.x;
            room.nx = mask->sizeX();
        }
        blender_->run(images.inked, room);
    }
    return images.box;
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
    brush_ = brush ? *brush : BrushParameters::defaults();
    color_ = packedColor(brush_.color);
    tipChanged_ = true;
    paramsChanged();
    if (again) begin(blendMode_);
}

void StampRenderer::setColor(const std::array<float, 4>& color) {
    BrushParameters brush = brush_;
    brush.color = color;
    setParameters(&brush);
}

void StampRenderer::setSource(ilImage* high, ilImage* low, bool pinned, std::int32_t x,
                              std::int32_t y) {
    const auto place = pinned ? StampSource::Place::Layer : StampSource::Place::Corner;
    source_ = {Ref<ilImage>(high), Ref<ilImage>(low), place, x, y};
}

void StampRenderer::setCarriedSource(ilImage* high, ilImage* low) {
    source_ = {Ref<ilImage>(high), Ref<ilImage>(low), StampSource::Place::Middle, 0, 0};
}

void StampRenderer::setTargets(ilImage* high, ilImage* low) {
    high_ = Ref<ilImage>(high);
    low_ = Ref<ilImage>(low);
    if (begun_) bindTargets();
}

}  // namespace brushwork::npc
