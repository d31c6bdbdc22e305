// Which of a host's numbers can be places of a document. Images end 102400 pixels from zero; what
// lies twice as far is refused, so that sums of two places stay far from overflow.
#pragma once

#include <cmath>
#include <cstdint>

#include "brushwork/il_tile.h"
#include "brushwork/transform_record.h"

namespace brushwork {

inline constexpr std::int32_t farthestPlace = 204800;

[[nodiscard]] inline bool isPlace(float x, float y) {
    constexpr auto limit = static_cast<float>(farthestPlace);
    return std::fabs(x) <= limit && std::fabs(y) <= limit;
}

[[nodiscard]] inline bool isPlace(std::int32_t x, std::int32_t y) {
    return x >= -farthestPlace && x <= farthestPlace && y >= -farthestPlace && y <= farthestPlace;
}

// An empty one, too, as long as its numbers are in reach.
[[nodiscard]] inline bool isBox(const ilTile& box) {
    return isPlace(box.x, box.y) && isPlace(box.nx, box.ny);
}

// A picture that is still one: scales from a thousandth to a thousand, either way round.
[[nodiscard]] inline bool isPlacement(const TransformRecord& record) {
    const auto isFactor = [](float scale) {
        return std::fabs(scale) <= 1000.0f && std::fabs(scale) >= 0.001f;
    };
    bool placed = isPlace(record.x, record.y) && isPlace(record.pivotX, record.pivotY) &&
                  isFactor(record.scaleX) && isFactor(record.scaleY) &&
                  std::fabs(record.rotation) <= 36000.0f;
    for (const float corner : record.corners) placed = placed && isPlace(corner, 0.0f);
    return placed;
}

}  // namespace brushwork
