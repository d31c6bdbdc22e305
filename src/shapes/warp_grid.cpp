#include "shapes/warp_grid.h"

#include <cmath>

namespace brushwork {
namespace {

constexpr double spare = 4.0;    // cells before the extent
constexpr double further = 6.0;  // cells behind it, of which the grid gives two back
constexpr double givenBack = 2.0;
constexpr double farthest = 1 << 24;
constexpr double mostNodes = 1 << 24;

double cellOf(double place, float cell) {
    return std::floor(place / static_cast<double>(cell));
}

}  // namespace

std::optional<WarpGrid> WarpGrid::over(const OutlineExtent& extent, float cell) {
    if (!(cell >= 1.0f)) return std::nullopt;
    const double left = cellOf(extent.lowX, cell) - spare;
    const double low = cellOf(extent.lowY, cell) - spare;
    const double across = cellOf(extent.highX, cell) + further - left - givenBack;
    const double down = cellOf(extent.highY, cell) + further - low - givenBack;
    const bool reachable = std::fabs(left) < farthest && std::fabs(low) < farthest;
    if (!reachable || !(across * down <= mostNodes)) return std::nullopt;
    return WarpGrid{cell, static_cast<std::int32_t>(left), static_cast<std::int32_t>(low),
                    static_cast<std::int32_t>(across), static_cast<std::int32_t>(down)};
}

ilTile WarpGrid::box() const {
    // The outermost nodes only bend the cells inside them. A pixel goes by its middle.
    const auto pixel = [this](std::int32_t node) {
        return static_cast<std::int32_t>(std::ceil(placeOf(node) - 0.5));
    };
    const std::int32_t x = pixel(left + 1), y = pixel(low + 1);
    return flatTile(x, y, pixel(left + across - 2) - x, pixel(low + down - 2) - y);
}

WarpSpan::WarpSpan(float cell, std::int32_t begin, std::int32_t count, double place) {
    const double cells = place / static_cast<double>(cell);
    const double node = std::floor(cells);
    first = static_cast<std::int32_t>(node) - begin - 1;
    isInside = first >= 0 && first + 3 < count;
    const auto t = static_cast<float>(cells - node);
    const float t2 = t * t, t3 = t2 * t;
    weights = {0.5f * (2.0f * t2 - t3 - t), 0.5f * (3.0f * t3 - 5.0f * t2 + 2.0f),
               0.5f * (4.0f * t2 - 3.0f * t3 + t), 0.5f * (t3 - t2)};
}

}  // namespace brushwork
