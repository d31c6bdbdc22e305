#include "blending/paint/soft_edge_box.h"

#include <algorithm>
#include <cstddef>

namespace brushwork {
namespace {

constexpr std::int64_t mostSide = 1 << 20;

// How far a place of the widened span lies outside the span.
std::int32_t distance(std::int32_t place, std::int32_t extent, std::int32_t border) {
    return std::max({border - place, place - (border + extent - 1), 0});
}

}  // namespace

Ref<ilMemoryImg> softEdgeBox(const ilTile& box, std::int32_t border) {
    if (box.isEmpty() || border < 0) return {};
    const std::int64_t width = std::int64_t{box.nx} + 2 * std::int64_t{border};
    const std::int64_t height = std::int64_t{box.ny} + 2 * std::int64_t{border};
    if (width > mostSide || height > mostSide) return {};
    const Ref<ilMemoryImg> coverage(new ilMemoryImg(static_cast<std::int32_t>(width),
                                                    static_cast<std::int32_t>(height), 1, 1,
                                                    TypeUChar, OrderInterleaved));
    std::uint8_t* out = coverage->data();
    if (!out) return {};
    for (std::int32_t y = 0; y < height; ++y) {
        const std::int32_t up = distance(y, box.ny, border);
        for (std::int32_t x = 0; x < width; ++x) {
            const std::int64_t n = std::max(up, distance(x, box.nx, border));
            *out++ = static_cast<std::uint8_t>(255 * (border + 1 - n) / (border + 1));
        }
    }
    return coverage;
}

}  // namespace brushwork
