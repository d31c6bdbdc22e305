#include "strokes/stamp/stamp_binding.h"

#include <algorithm>
#include <cmath>

#include "blending/modes/blender_registry.h"
#include "blending/modes/glow_brush_mode.h"
#include "blending/modes/marker_colorless_mode.h"
#include "blending/modes/marker_mode.h"
#include "blending/modes/paint_modes.h"
#include "blending/modes/pastel_mode.h"
#include "blending/modes/smudge_mode.h"
#include "brushwork/brush_texture_parameters.h"

namespace brushwork::npc {
namespace {

constexpr float fullWord = 65535.0f;
constexpr float colorlessStrength = 0.25f;
constexpr float leastWetness = 0.05f;

// In double, rounded once, so that it is the same on every system.
float powerOf(float base, double exponent) {
    return static_cast<float>(std::pow(static_cast<double>(base), exponent));
}

// How much a stamp takes on: little at a high rate, so that old paint is carried far.
float uptake(float rate) {
    return 1.0f - powerOf(rate * 0.64f + 0.01f, 0.03);
}

void setPastel(PastelBlender& blender, const BrushParameters& brush) {
    const float a = powerOf(brush.mixRate0 * 0.85f, 0.03);
    const float b = powerOf(brush.mixRate1, 0.1);
    const float c = powerOf(brush.mixRate2, 0.1);
    blender.setCanvasMix(std::trunc(b * fullWord));
    blender.setPickup(std::trunc((1.0f - a) * fullWord));
    blender.setColorLoad(std::trunc((1.0f - c) * fullWord));
    blender.setPaintColor(packedColor(brush.color));
}

// Along one axis. The pixel that holds the stamp's middle is (extent - 1) / 2 behind its corner;
// carried buffers are a stamp's width and one pixel on each side.
std::int32_t placeOn(const StampSource& source, std::int32_t offset, std::int32_t corner,
                     std::int32_t extent, std::int32_t sourceExtent) {
    switch (source.place) {
        case StampSource::Place::Layer: return offset;
        case StampSource::Place::Middle:
            return corner + (extent - 1) / 2 - (sourceExtent - 2) / 2 + offset;
        default: return corner + offset;
    }
}

BlendModeId modeOf(const GenericBlender& blender) {
    return static_cast<BlendModeId>(blender.mode());
}

}  // namespace

std::uint32_t packedColor(const std::array<float, 4>& color) {
    std::uint32_t packed = 0;
    for (std::size_t n = color.size(); n-- > 0;) {
        const float rounded = 255.0f * color[n] + 0.5f;
        const float byte = rounded > 0.0f ? std::min(rounded, 255.0f) : 0.0f;
        packed = packed << 8 | static_cast<std::uint32_t>(byte);
    }
    return packed;
}

bool carriesPaint(BlendModeId mode) {
    return mode >= BlendModeId::MarkerColorless && mode <= BlendModeId::Pastel;
}

void setModeParameters(GenericBlender& blender, const BrushParameters& brush) {
    switch (modeOf(blender)) {
        case BlendModeId::Marker:
            static_cast<MarkerBlender&>(blender).setStrength(brush.markerStrength);
            break;
        case BlendModeId::MarkerColorless: {
            auto& marker = static_cast<MarkerColorlessBlender&>(blender);
            marker.setStrength(colorlessStrength);
            marker.setWetness(std::max(leastWetness, 1.0f - brush.mixRate0));
            break;
        }
        case BlendModeId::Smudge:
            static_cast<SmudgeBlender&>(blender).setPickup(uptake(brush.mixRate0));
            break;
        case BlendModeId::GlowBrush:
            static_cast<GlowBrushBlender&>(blender).setStrength(uptake(brush.mixRate0));
            break;
        case BlendModeId::Pastel: setPastel(static_cast<PastelBlender&>(blender), brush); break;
        default: break;
    }
}

void setStampValues(GenericBlender& blender, float opacity, float flow) {
    blender.setOpacity(opacity);
    const BlendModeId mode = modeOf(blender);
    if (mode == BlendModeId::Paint || mode == BlendModeId::SolidColorPaint)
        static_cast<FlowBlender&>(blender).setFlow(flow);
}

void bindSource(GenericBlender& blender, const StampSource& source, const StampImages& stamp,
                std::uint32_t color) {
    const bool writable = carriesPaint(modeOf(blender));
    const std::int32_t x = stamp.box.x, y = stamp.box.y;
    if (source.isGiven()) {
        const std::int32_t left = source.left(stamp.box), bottom = source.bottom(stamp.box);
        blender.setSource(source.high.get(), left, bottom, writable);
        blender.setSecondSource(source.low.get(), left, bottom, writable);
        return;
    }
    blender.setSource(stamp.color, x, y, writable);
    blender.setSecondSource(nullptr, 0, 0, false);
    blender.setConstantColor(color);
}

std::int32_t StampSource::left(const ilTile& stamp) const {
    ilImage& image = high ? *high : *low;
    return placeOn(*this, x, stamp.x, stamp.nx, image.sizeX());
}

std::int32_t StampSource::bottom(const ilTile& stamp) const {
    ilImage& image = high ? *high : *low;
    return placeOn(*this, y, stamp.y, stamp.ny, image.sizeY());
}

bool hasTexture(const BrushParameters& brush) {
    return brush.texture && brush.textureEnabled && brush.texture->enabled && brush.textureImage;
}

TextureMask::TextureMask() = default;
TextureMask::~TextureMask() = default;

ilSPMemoryImg* TextureMask::apply(const BrushParameters& brush, const StampImages& stamp,
                                  float strength) {
    if (!hasTexture(brush)) return stamp.mask;
    const std::int32_t width = stamp.mask->sizeX(), height = stamp.mask->sizeY();
    if (!image_ || image_->sizeX() != width || image_->sizeY() != height)
        image_ = makeRef<ilSPMemoryImg>(width, height, 1);
    if (!blender_) {
        blender_ = createBlender(BlendModeId::MaskMultiply);
        blender_->setThreaded(true);
    }
    if (!image_->data()) {
        image_.reset();
        return stamp.mask;
    }
    blender_->setDestination(image_.get(), 0, 0);
    blender_->setSource(stamp.mask, 0, 0, false);
    blender_->setMask(brush.textureImage.get(), -(stamp.box.x + brush.texture->offsetX),
                      -(stamp.box.y + brush.texture->offsetY), false);
    blender_->setOpacity2(strength);
    blender_->run(flatTile(0, 0, stamp.box.nx, stamp.box.ny));
    // The source may be a kept stamp: it is the cache's to drop.
    blender_->setSource(nullptr, 0, 0, false);
    return image_.get();
}

}  // namespace brushwork::npc
