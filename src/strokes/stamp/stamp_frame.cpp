#include "strokes/stamp/stamp_frame.h"

#include <cmath>
#include <numbers>

#include "strokes/path/stamp_ranges.h"

namespace brushwork::npc {
namespace {

// Beyond what any brush makes: 665 pixels of radius, scaled by 4 and turned, are 7,500.
constexpr float longestSide = 16384.0f;

// A pixel is translated, then turned back, then scaled.
StampMap mapOf(const StampFrame& f, float perX, float perY, float middleX, float middleY) {
    StampMap map;
    map.xx = f.cosine * perX;
    map.xy = f.sine * perX;
    map.x0 = (f.cosine * f.startX + f.sine * f.startY) * perX + middleX;
    map.yx = -f.sine * perY;
    map.yy = f.cosine * perY;
    map.y0 = (f.cosine * f.startY - f.sine * f.startX) * perY + middleY;
    return map;
}

float usableScale(float scale) {
    return scale != 0.0f && std::isfinite(scale) ? scale : stampScaleStep;
}

}  // namespace

StampMap StampFrame::toTable(std::int32_t imageWidth, std::int32_t imageHeight) const {
    const auto width = static_cast<float>(imageWidth), height = static_cast<float>(imageHeight);
    return mapOf(*this, width / (2.0f * radius * scaleX), height / (2.0f * radius * scaleY),
                 width * 0.5f + 0.5f, height * 0.5f + 0.5f);
}

StampFrame stampFrame(const StampPoint& point) {
    StampFrame f;
    f.radius = point.radius;
    f.scaleX = usableScale(point.scaleX);
    f.scaleY = usableScale(point.scaleY);
    const double turn = static_cast<double>(point.angle) * (std::numbers::pi / 180.0);
    f.sine = static_cast<float>(std::sin(turn));
    f.cosine = static_cast<float>(std::cos(turn));

    // One pixel to spare on each side, and one for the place within the pixel.
    const float w = std::ceil(std::fabs(f.scaleX) * 2.0f * f.radius) + 2.0f;
    const float h = std::ceil(std::fabs(f.scaleY) * 2.0f * f.radius) + 2.0f;
    const float s = std::fabs(f.sine), c = std::fabs(f.cosine);
    const float width = h * s + w * c + 1.0f;
    const float height = h * c + w * s + 1.0f;
    const float floorX = std::floor(point.x), floorY = std::floor(point.y);
    const bool fits = width < longestSide && height < longestSide && isStampInReach(floorX, floorY);
    if (!fits) return f;

    const auto nx = static_cast<std::int32_t>(width), ny = static_cast<std::int32_t>(height);
    const std::int32_t halfX = (nx - 1) >> 1, halfY = (ny - 1) >> 1;
    f.box = flatTile(static_cast<std::int32_t>(floorX) - halfX,
                     static_cast<std::int32_t>(floorY) - halfY, nx, ny);
    f.startX = 0.5f - (static_cast<float>(halfX) + (point.x - floorX));
    f.startY = 0.5f - (static_cast<float>(halfY) + (point.y - floorY));
    f.toBrush = mapOf(f, 1.0f / f.scaleX, 1.0f / f.scaleY, 0.0f, 0.0f);
    return f;
}

}  // namespace brushwork::npc
