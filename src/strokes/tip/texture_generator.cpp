#include "strokes/tip/texture_generator.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "image/work/il_pattern_img.h"
#include "strokes/tip/tile_scaling.h"

namespace brushwork {
namespace {

bool differsFromOne(float scale) {
    return !(std::fabs(scale - 1.0f) < std::numeric_limits<float>::epsilon());
}

// A shift in whole pixels, brought into one period.
std::int32_t shiftWithin(float shift, std::int32_t size) {
    if (!std::isfinite(shift)) return 0;
    const auto rest =
        static_cast<std::int32_t>(std::fmod(std::trunc(static_cast<double>(shift)), size));
    return rest < 0 ? rest + size : rest;
}

// Moved right and up; what leaves on one side comes in on the other.
Ref<ilSPMemoryImg> rolled(ilSPMemoryImg& image, std::int32_t right, std::int32_t up) {
    const std::int32_t width = image.sizeX(), height = image.sizeY();
    auto moved = makeRef<ilSPMemoryImg>(width, height, 1);
    if (!moved->data()) return {};
    const auto rowBytes = static_cast<std::size_t>(width);
    const auto head = static_cast<std::size_t>(right);
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint8_t* const from = image.data() + static_cast<std::size_t>(y) * rowBytes;
        const std::int32_t row = (y < height - up) ? y + up : y - (height - up);
        std::uint8_t* const to = moved->data() + static_cast<std::size_t>(row) * rowBytes;
        std::memcpy(to + head, from, rowBytes - head);
        std::memcpy(to, from + (rowBytes - head), head);
    }
    return moved;
}

}  // namespace

TextureGenerator::TextureGenerator() = default;

TextureGenerator::TextureGenerator(const Ref<BrushTextureParameters>& source) : source_(source) {}

TextureGenerator::~TextureGenerator() = default;

void TextureGenerator::setSource(const Ref<BrushTextureParameters>& source) {
    if (source_ != source) image_.reset();
    source_ = source;
}

Ref<ilImage> TextureGenerator::getImage() {
    if (!source_) return {};
    if (source_->dirty || !image_) {
        rebuild();
        source_->dirty = false;
    }
    return image_;
}

bool TextureGenerator::scales() const {
    return source_ && (differsFromOne(source_->scaleX) || differsFromOne(source_->scaleY));
}

void TextureGenerator::rebuild() {
    image_.reset();
    Ref<ilSPMemoryImg> tile = makeBase();
    if (tile && scales()) {
        const std::int32_t width = scaledTileSize(tile->sizeX(), source_->scaleX);
        const std::int32_t height = scaledTileSize(tile->sizeY(), source_->scaleY);
        tile = scaledTile(*tile, width, height, width, height);
    }
    if (!tile) return;
    auto pattern = makeRef<ilPatternImg>();
    if (pattern->setPattern(tile.get()) == ImageOk) image_ = std::move(pattern);
}

Ref<ilSPMemoryImg> TextureGenerator::makeBase() {
    if (!source_ || !source_->image) return {};
    ilImage& image = *source_->image;
    const std::int32_t width = image.sizeX(), height = image.sizeY();
    if (width < 1 || height < 1) return {};
    auto base = makeRef<ilSPMemoryImg>(width, height, 1);
    if (!base->data()) return {};
    // Stamps look at the first channel alone.
    const ilImageConfig grey(TypeUChar, OrderInterleaved, 1);
    const ilTile all = flatTile(0, 0, width, height);
    if (image.readRegion(all, base->data(), all, &grey) != ImageOk) return {};
    const std::int32_t right = shiftWithin(source_->shiftX, width);
    const std::int32_t up = shiftWithin(source_->shiftY, height);
    if (right != 0 || up != 0) base = rolled(*base, right, up);
    if (base && source_->invert) base->invert();
    return base;
}

}  // namespace brushwork
