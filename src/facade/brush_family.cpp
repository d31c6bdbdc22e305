#include "brushwork/brush_family.h"

#include <algorithm>
#include <utility>

#include "facade/facade_state.h"
#include "facade/input_limits.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {
namespace {

// What is no number counts as the lower end.
float within(float value, float low, float high) {
    return value >= low ? std::min(value, high) : low;
}

// The pixels of its box, with a corner at 0, 0, so that whoever repeats them knows where they end.
Ref<ilImage> denseCopy(const ImageRef& image) {
    const ilTile box = image.bounds();
    if (image.channels() != 1 || box.isEmpty()) return {};
    const auto copy = makeRef<ilSPMemoryImg>(box.nx, box.ny, 1);
    return copy->data() && image.read(box, copy->data()) ? Ref<ilImage>(copy) : Ref<ilImage>();
}

}  // namespace

void BrushFamily::setColor(const std::array<float, 4>& color) {
    // A stroke with a drawn colour gives back the one that counts from then on.
    auto& held = state_.brush.jittered ? state_.brush.jitterBase : state_.brush.color;
    for (std::size_t n = 0; n < color.size(); ++n) held[n] = within(color[n], 0.0f, 1.0f);
}

std::array<float, 4> BrushFamily::color() const {
    return state_.brush.color;
}

void BrushFamily::setBrush(const BrushParameters& brush, const StrokeParameters& stroke) {
    state_.brush.brush = brush;
    state_.brush.stroke = stroke;
}

const BrushParameters& BrushFamily::brush() const {
    return state_.brush.brush;
}

const StrokeParameters& BrushFamily::strokeParameters() const {
    return state_.brush.stroke;
}

void BrushFamily::setBrushTexture(const Ref<BrushTextureParameters>& texture) {
    if (texture != state_.brush.texture || !texture)
        state_.brush.grain = texture ? makeRef<TextureGenerator>(texture) : Ref<TextureGenerator>();
    state_.brush.texture = texture;
}

void BrushFamily::setBrushTexture(const Ref<BrushTextureParameters>& texture,
                                  const ImageRef& grain) {
    if (texture) {
        texture->image = denseCopy(grain);
        texture->dirty = true;
    }
    setBrushTexture(texture);
}

void BrushFamily::setStamp(const ImageRef& image) {
    if (!image) {
        state_.brush.paintObj.reset();
        return;
    }
    state_.brush.stampIsMask = image.channels() == 1;
    state_.brush.paintObj =
        makeRef<ImagePaintObj>(Ref<ilImage>(image.image()), ImagePaintObj::Levels::Reduced);
}

void BrushFamily::setConvolve(float strength, float detail, float radius) {
    state_.brush.convolveStrength = strength;
    state_.brush.convolveDetail = detail;
    state_.brush.convolveRadius = radius;
}

void BrushFamily::setCloneSource(std::int32_t layerId, float x, float y) {
    state_.brush.cloneFromLayer = layerId != -1;
    state_.brush.cloneSourceLayer = layerId;
    if (!isPlace(x, y)) x = y = 0.0f;
    state_.brush.cloneOffsetX = x;
    state_.brush.cloneOffsetY = y;
}

void BrushFamily::setStrokeMode(std::int32_t mode) {
    state_.brush.strokeMode = mode;
}

void BrushFamily::setBrushBlend(std::int32_t mode, float opacity) {
    state_.brush.blendModeOfBrush = mode;
    state_.brush.wetBlendFactor = opacity >= 0.0f && opacity <= 1.0f ? opacity : 1.0f;
}

void BrushFamily::setTextureBrush(bool on) {
    state_.modal.textureBrushOn = on;
}

void BrushFamily::setPatternBrush(bool on) {
    state_.modal.patternBrushOn = on;
}

void BrushFamily::setColorJitter(bool on, float hue, float saturation, float value) {
    state_.brush.colorJitterOn = on;
    state_.brush.jitterHue = within(hue, 0.0f, 100.0f);
    state_.brush.jitterSaturation = within(saturation, 0.0f, 100.0f);
    state_.brush.jitterValue = within(value, 0.0f, 100.0f);
}

void BrushFamily::setSymmetry(const Ref<Symmetry>& symmetry) {
    state_.brush.symmetry = symmetry;
}

void BrushFamily::setDisplayUpdates(bool on) {
    state_.brush.displayUpdates = on;
}

void BrushFamily::setStrokeHooks(std::function<void()> begin, std::function<void()> end) {
    state_.brush.strokeStartHook = std::move(begin);
    state_.brush.strokeEndHook = std::move(end);
}

}  // namespace brushwork
