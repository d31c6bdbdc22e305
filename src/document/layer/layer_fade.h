// Opacities as bytes, and a picture faded by one.
#pragma once

#include <cmath>
#include <cstdint>

#include "blending/paint/paint_ops.h"

namespace brushwork {

// To the nearest, a half away from zero; cut to 0 to 255.
[[nodiscard]] inline std::uint8_t opacityByte(float opacity) {
    if (!(opacity > 0.0f)) return 0;
    return opacity < 1.0f ? static_cast<std::uint8_t>(std::round(opacity * 255.0f)) : 255;
}

// A component of a colour, 0 to 1, as a byte.
[[nodiscard]] inline std::uint8_t colorByte(float component) {
    if (!(component > 0.0f)) return 0;
    return component < 1.0f ? static_cast<std::uint8_t>(component * 255.0f + 0.5f) : 255;
}

// The painter must be at the pair that keeps the inside.
inline void fade(PaintOps& painter, const ilTile& box, float opacity) {
    const std::uint8_t byte = opacityByte(opacity);
    const std::uint8_t bytes[4] = {byte, byte, byte, byte};
    painter.fillRegion(box, ilPixel(TypeUChar, painter.channels() == 1 ? 1 : 4, bytes));
}

}  // namespace brushwork
