#include "brushwork/brush_texture_parameters.h"

#include "foundation/services/random_source.h"
#include "image/chain/il_image.h"

namespace brushwork {

namespace {

// At least 1, so that a pattern scaled away still has a place.
std::int32_t periodOf(std::int32_t size, float scale) {
    const float scaled = static_cast<float>(size) * scale + 0.5f;
    if (!(scaled >= 1.0f)) return 1;
    return scaled < 2147483648.0f ? static_cast<std::int32_t>(scaled) : 2147483647;
}

std::int32_t placeWithin(std::int32_t size, float scale) {
    return static_cast<std::int32_t>(randomValue()) % periodOf(size, scale);
}

}  // namespace

BrushTextureParameters::BrushTextureParameters() = default;
BrushTextureParameters::~BrushTextureParameters() = default;

void BrushTextureParameters::setInvert(bool on) {
    if (on == invert) return;
    invert = on;
    dirty = true;
}

void BrushTextureParameters::setRandomOffset(bool on) {
    if (randomOffset && !on) offsetX = offsetY = 0;
    randomOffset = on;
}

void BrushTextureParameters::drawOffset() {
    if (!randomOffset || !image) return;
    offsetX = placeWithin(image->sizeX(), scaleX);
    offsetY = placeWithin(image->sizeY(), scaleY);
}

}  // namespace brushwork
