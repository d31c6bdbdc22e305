// Rounding a stamp to the few places, sizes and angles that are told apart, and the number under
// which its pixels are kept.
#pragma once

#include <cstdint>

#include "brushwork/stamp_point.h"

namespace brushwork::npc {

// Of a hardness (solid share of the radius): how much larger a soft tip is made so that it looks
// the nominal size; 1.0 for a hard one to 1.3 for the softest.
[[nodiscard]] float radiusCompensation(float hardness);

// What of a brush has a say in the rounding.
struct StampRounding {
    float hardness = 1.0f;
    bool procedural = true;
    bool smears = false;  // drags the canvas along: the radius stays nominal
};

// How much larger than its nominal radius a brush draws.
[[nodiscard]] float radiusGrowth(const StampRounding& rounding);

// The stamp that is made for a point. Radius and place lie on steps of 1/16 pixel below radius 16,
// 1/4 below 64, else whole pixels; the radius is rounded up, the place down. The angle becomes
// whole degrees of [0, 360); scales lie on steps of 1/32. A flat stamp of a radius above 1 is at
// least one pixel thick. What isn't a finite number counts as 0, a radius as the smallest.
[[nodiscard]] StampPoint quantizedStamp(const StampPoint& point, const StampRounding& rounding);
// The same by the growth of the rounding.
[[nodiscard]] StampPoint quantizedStamp(const StampPoint& point, float growth);

// Under what a quantised stamp is kept, and the pixel that its middle lies in.
struct StampKey {
    std::uint64_t key = 0;
    std::int32_t x = 0, y = 0;
    bool inReach = false;  // else x and y are not told
};
[[nodiscard]] StampKey placedStampKey(const StampPoint& quantized);

// Of a quantised stamp: radius, angle, scales and place within the pixel, in this order from the
// top. Colour, hardness and tip are not in it.
[[nodiscard]] std::uint64_t stampKey(const StampPoint& quantized);

}  // namespace brushwork::npc
