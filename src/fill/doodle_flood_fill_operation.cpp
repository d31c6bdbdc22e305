#include "fill/doodle_flood_fill_operation.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "fill/doodle_quality.h"
#include "fill/doodle_walk.h"
#include "fill/fill_surface.h"

namespace brushwork {
namespace {

constexpr std::int32_t marginLow = 2;
constexpr std::int32_t marginHigh = 4;

FloodBox boxOf(const ilTile& tile) {
    if (tile.isEmpty()) return {};
    return {tile.x, tile.y, tile.endX() - 1, tile.endY() - 1};
}

ilTile withMargins(const ilTile& tile) {
    return flatTile(tile.x - marginLow, tile.y - marginLow, tile.nx + marginLow + marginHigh,
                    tile.ny + marginLow + marginHigh);
}

// `share` of the fill in place of as much of the old.
std::uint32_t mixed(std::uint32_t old, std::uint32_t fill, double share) {
    const double value = old - old * share + fill * share;
    return static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0));
}

std::uint32_t mixedPixel(std::uint32_t old, std::uint32_t fill, std::uint32_t mask) {
    const double share = mask * 0.003921569;
    std::uint32_t result = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
        result |= mixed(old >> shift & 0xFF, fill >> shift & 0xFF, share) << shift;
    return result;
}

}  // namespace

DoodleFloodFillOperation::DoodleFloodFillOperation(const ilTile& rectangle,
                                                   const ilTile& maskExtent)
    : mask_(new ilSmartImage),
      clip_(boxOf(intersection(withMargins(rectangle), maskExtent))),
      rectangle_(boxOf(intersection(rectangle, maskExtent))) {}

void DoodleFloodFillOperation::run(std::int32_t x, std::int32_t y, float tolerance,
                                   ilImage& image) {
    dirty_ = {};
    const std::unique_ptr<FillSurface> source = makeFillSurface(image);
    if (!source || rectangle_.isEmpty() || !clip_.holds(x, y)) return;
    mask_ = Ref<ilSmartImage>(new ilSmartImage);
    const std::unique_ptr<FillSurface> marks = makeFillSurface(*mask_);
    if (!marks) return;
    x = std::clamp(x, rectangle_.left, rectangle_.right);
    y = std::clamp(y, rectangle_.top, rectangle_.bottom);
    target_ = ColorTarget(source->get(x, y), source->isGrey() ? 1 : 4);
    const float scaled = tolerance * 255.0f;
    tolerance_ =
        scaled > 0.0f ? static_cast<std::int32_t>(std::round(std::min(scaled, 255.0f))) : 0;
    DoodleWalk walk(*source, *marks, clip_, target_, tolerance_);
    walk.run(x, y);
    dirty_ = walk.dirty();
    if (forceFallback_ || countSpikes(*marks, dirty_) > mostSpikes)
        revertToBasicFill(*source, *mask_, *marks, dirty_, target_, tolerance_);
}

void DoodleFloodFillOperation::applyColour(std::uint32_t rgba, ilImage& image) {
    const std::unique_ptr<FillSurface> target = makeFillSurface(image);
    const std::unique_ptr<FillSurface> marks = makeFillSurface(*mask_);
    if (!target || !marks) return;
    const std::uint32_t fill = target->isGrey() ? rgba >> 24 : rgba;
    for (std::int32_t y = dirty_.top; y <= dirty_.bottom; ++y) {
        for (std::int32_t x = dirty_.left; x <= dirty_.right; ++x) {
            const std::uint32_t mask = marks->get(x, y);
            if (mask == 0) continue;
            target->put(x, y, mask == 255 ? fill : mixedPixel(target->get(x, y), fill, mask));
        }
    }
}

}  // namespace brushwork
