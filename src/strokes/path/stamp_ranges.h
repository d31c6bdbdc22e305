// Bringing the values of a stamp into their ranges and steps.
#pragma once

#include <cmath>

#include "brushwork/stamp_point.h"

namespace brushwork {

// What isn't a number becomes the smallest radius.
[[nodiscard]] inline float clampedStampRadius(float radius) {
    if (!(radius >= minimumStampRadius)) return minimumStampRadius;
    return radius > maximumStampRadius ? maximumStampRadius : radius;
}

// Of the whole pixel that a stamp's middle lies in: boxes around it fit 32 bits.
[[nodiscard]] inline bool isStampInReach(float x, float y) {
    constexpr float farthest = 1.0e9f;  // from the origin
    return std::fabs(x) < farthest && std::fabs(y) < farthest;
}

// std::floor, without a call where the number fits an int.
[[nodiscard]] inline float floorOf(float value) {
    if (!(std::fabs(value) < 8388608.0f)) return std::floor(value);
    const auto cut = static_cast<float>(static_cast<int>(value));
    return cut > value ? cut - 1.0f : cut;
}

// Into [0, 360). Raised first and lowered then, since a tiny negative angle rounds up to 360.
[[nodiscard]] inline float wrappedDegrees(float angle) {
    if (!(angle >= -360.0f && angle < 720.0f)) angle = std::fmod(angle, 360.0f);
    if (angle < 0.0f) angle += 360.0f;
    if (angle >= 360.0f) angle -= 360.0f;
    return angle;
}

}  // namespace brushwork
