#include "strokes/tip/tile_scaling.h"

#include <algorithm>

namespace brushwork {
namespace {

constexpr std::int32_t reach = 4;          // pixels that a sampler looks beyond an edge, and some
constexpr std::int32_t longest = 1 << 24;  // of a size; floats still tell its pixels apart
constexpr std::int64_t mostPixels = 1 << 28;  // of an image on the way

Ref<ilSPMemoryImg> newTile(std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1 || width > longest || height > longest) return {};
    if (width * height > mostPixels) return {};
    auto tile = makeRef<ilSPMemoryImg>(static_cast<std::int32_t>(width),
                                       static_cast<std::int32_t>(height), 1);
    if (!tile->data()) tile.reset();
    return tile;
}

struct Size {
    std::int32_t x, y;
};

// The pixels of one step. A whole tile goes before the part that is read: a margin that stays a
// whole number of pixels at every scale.
Ref<ilSPMemoryImg> resampled(ilSPMemoryImg& tile, Size size, Size shown, SampleMode mode) {
    const std::int32_t width = tile.sizeX(), height = tile.sizeY();
    const auto wide = newTile(2 * std::int64_t{width} + reach, 2 * std::int64_t{height} + reach);
    auto result = newTile(shown.x, shown.y);
    if (!wide || !result) return {};
    repeatOver(*wide, tile);
    wide->setSampleModes(mode, mode);
    wide->setScale(static_cast<float>(size.x) / static_cast<float>(width),
                   static_cast<float>(size.y) / static_cast<float>(height));
    if (wide->scaleRegionInto({size.x, size.y, shown.x, shown.y}, result->scaledTarget()) !=
        ImageOk)
        return {};
    return result;
}

// One halving on the way from a size to a smaller one; the size itself where that would go too far.
std::int32_t halvedToward(std::int32_t size, std::int32_t wanted) {
    const std::int32_t half = size - size / 2;
    return half >= wanted ? half : size;
}

}  // namespace

std::int32_t scaledTileSize(std::int32_t size, float scale) {
    return SamplingTables::scaledSize(size, scale);
}

Ref<ilSPMemoryImg> scaledTile(ilSPMemoryImg& tile, std::int32_t width, std::int32_t height,
                              std::int32_t shownX, std::int32_t shownY) {
    if (width < 1 || height < 1) return {};
    Ref<ilSPMemoryImg> from(&tile);
    while (from) {
        const Size half{halvedToward(from->sizeX(), width), halvedToward(from->sizeY(), height)};
        if (half.x == from->sizeX() && half.y == from->sizeY()) break;
        from = resampled(*from, half, half, SampleMode::Bilinear);
    }
    if (!from) return {};
    return resampled(*from, {width, height}, {std::min(shownX, width), std::min(shownY, height)},
                     SampleMode::Bicubic);
}

void repeatOver(ilImage& target, ilSPMemoryImg& tile) {
    const std::int32_t width = tile.sizeX(), height = tile.sizeY();
    const std::int32_t endX = target.sizeX(), endY = target.sizeY();
    for (std::int64_t y = 0; y < endY; y += height)
        for (std::int64_t x = 0; x < endX; x += width)
            target.copyRegion(
                flatTile(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                         static_cast<std::int32_t>(std::min<std::int64_t>(width, endX - x)),
                         static_cast<std::int32_t>(std::min<std::int64_t>(height, endY - y))),
                tile, 0, 0, 0, nullptr, CopyDirection::FromOther);
}

}  // namespace brushwork
