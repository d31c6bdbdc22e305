#include "strokes/tip/preview_texture_generator.h"

#include "strokes/tip/tile_scaling.h"

namespace brushwork {
namespace {

// For a target in colour: opaque greys.
Ref<ilSPMemoryImg> inColor(ilSPMemoryImg& grey) {
    auto color = makeRef<ilSPMemoryImg>(grey.sizeX(), grey.sizeY(), 4);
    if (!color->data()) return {};
    std::uint8_t* to = color->data();
    for (std::size_t n = 0; n < grey.byteSize(); ++n, to += 4) {
        to[0] = to[1] = to[2] = grey.data()[n];
        to[3] = 255;
    }
    return color;
}

}  // namespace

PreviewTextureGenerator::PreviewTextureGenerator(const Ref<BrushTextureParameters>& source,
                                                 const Ref<ilImage>& target)
    : TextureGenerator(source), target_(target) {}

PreviewTextureGenerator::~PreviewTextureGenerator() = default;

Ref<ilImage> PreviewTextureGenerator::getImage() {
    rebuild();
    return target_;
}

void PreviewTextureGenerator::rebuild() {
    Ref<ilSPMemoryImg> tile = target_ ? makeBase() : Ref<ilSPMemoryImg>();
    if (tile && scales()) {
        // A tile beyond the target's edge is never seen.
        tile = scaledTile(*tile, scaledTileSize(tile->sizeX(), source()->scaleX),
                          scaledTileSize(tile->sizeY(), source()->scaleY), target_->sizeX(),
                          target_->sizeY());
    }
    if (tile && target_->channels() == 4) tile = inColor(*tile);
    if (tile) repeatOver(*target_, *tile);
}

}  // namespace brushwork
