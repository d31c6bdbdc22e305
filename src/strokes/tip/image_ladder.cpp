#include "strokes/tip/image_ladder.h"

#include <algorithm>

namespace brushwork {
namespace {

constexpr std::int32_t longestShortSide = 1024;  // of an image that gets reduced copies
constexpr std::int32_t shortestSide = 3;         // to which the rounds go down
// Close to the root of one half; the sizes of the levels hang on it as it stands.
constexpr float rootOfHalf = 0.7071f;

std::int32_t roundsFor(std::int32_t shortSide) {
    std::int32_t rounds = 0;
    for (; shortSide > shortestSide; shortSide >>= 1) ++rounds;
    return std::max(rounds, 1);
}

// `base` itself and, `times` over, two copies of it that are narrower along y.
bool addFlattened(ImageLadder& levels, const Ref<ilImage>& base, std::int32_t times) {
    levels.push_back(base);
    if (times < 1) return true;
    const Ref<ilImage> flat = reducedCopy(*base, 1.0f, rootOfHalf);
    const Ref<ilImage> flatter = reducedCopy(*base, 1.0f, 0.5f);
    if (!flat || !flatter) return false;
    for (std::int32_t n = 0; n < times; ++n) {
        levels.push_back(flat);
        levels.push_back(flatter);
    }
    return true;
}

}  // namespace

Ref<ilSPMemoryImg> reducedCopy(ilImage& image, float scaleX, float scaleY) {
    const std::int32_t width = image.sizeX(), height = image.sizeY(), channels = image.channels();
    const auto whole = makeRef<ilSPMemoryImg>(width, height, channels);
    if (!whole->data()) return {};
    const ilTile box = flatTile(0, 0, width, height);
    const ilImageConfig config = whole->completed(nullptr);
    if (image.readRegion(box, whole->data(), box, &config) != ImageOk) return {};
    whole->setSampleModes(SampleMode::Bilinear, SampleMode::Bilinear);
    whole->setScale(scaleX, scaleY);
    const auto reduced =
        makeRef<ilSPMemoryImg>(SamplingTables::scaledSize(width, scaleX),
                               SamplingTables::scaledSize(height, scaleY), channels);
    if (!reduced->data() || whole->scaleAllInto(reduced->scaledTarget()) != ImageOk) return {};
    return reduced;
}

ImageLadder imageLadderOf(const Ref<ilImage>& image) {
    ImageLadder levels;
    if (!image) return levels;
    const auto [shortSide, longSide] = std::minmax({image->sizeX(), image->sizeY()});
    if (shortSide > longestShortSide || longSide <= 1) {
        levels.push_back(image);
        return levels;
    }
    Ref<ilImage> current = image;
    for (std::int32_t rounds = roundsFor(shortSide); rounds != 0; --rounds) {
        if (!addFlattened(levels, current, rounds - 1)) break;
        const Ref<ilImage> between = reducedCopy(*current, rootOfHalf, rootOfHalf);
        if (!between || !addFlattened(levels, between, rounds - 1)) break;
        if (rounds == 1) break;
        current = reducedCopy(*current, 0.5f, 0.5f);
        if (!current) break;
    }
    return levels;
}

Ref<ilImage> ladderLevel(const ImageLadder& levels, std::int32_t width, std::int32_t height) {
    if (levels.empty()) return {};
    if (width == 0 && height == 0) return levels[0];
    const auto at = [&](std::int32_t index) -> ilImage& {
        return *levels[static_cast<std::size_t>(index)];
    };
    const auto count = static_cast<std::int32_t>(levels.size());
    std::int32_t low = 0, high = count - 1, middle = 0;
    while (low <= high) {
        middle = (low + high) / 2;
        const std::int32_t levelWidth = at(middle).sizeX(), levelHeight = at(middle).sizeY();
        if (width < levelWidth && height < levelHeight) {
            low = ++middle;
        } else if (width == levelWidth && height == levelHeight) {
            low = middle + 1;
        } else if (width > levelWidth && height > levelHeight) {
            high = --middle;
        } else {
            middle = high;
            while (middle > 0 && (at(middle).sizeX() < width || at(middle).sizeY() < height))
                --middle;
            break;
        }
    }
    return levels[static_cast<std::size_t>(std::clamp(middle, 0, count - 1))];
}

}  // namespace brushwork
