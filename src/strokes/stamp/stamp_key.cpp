#include "strokes/stamp/stamp_key.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "strokes/path/stamp_ranges.h"

namespace brushwork::npc {
namespace {

struct Compensation {
    float hardness, factor;
};
constexpr Compensation compensations[] = {
    {1.0f, 1.0f}, {0.88f, 1.07f}, {0.75f, 1.15f}, {0.28f, 1.25f}, {0.0f, 1.3f}};

constexpr float scaleSteps = 32.0f;

float finiteOr0(float value) {
    return std::isfinite(value) ? value : 0.0f;
}

float flooredTo(float value, float steps, float inverse) {
    return floorOf(value * steps) * inverse;
}

float raisedTo(float value, float steps, float inverse) {
    return -floorOf(-(value * steps)) * inverse;
}

// Steps a pixel for places and radii: a power of two, whose inverse is exact.
float stepsAt(float radius) {
    return radius < 16.0f ? 16.0f : radius < 64.0f ? 4.0f : 1.0f;
}

float wholeDegrees(float angle) {
    if (angle >= 0.0f && angle < 360.0f) return floorOf(angle);
    float turned = std::fmod(angle, 360.0f);
    if (turned < 0.0f) turned += 360.0f;
    if (turned >= 360.0f) turned -= 360.0f;  // a tiny negative angle was rounded up to it
    return floorOf(turned);
}

// A number outside of 64 bits becomes the nearest bound.
std::uint64_t keyField(float value) {
    constexpr float bound = 9.2233720e18f;
    if (std::fabs(value) < bound)
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    if (std::isnan(value)) return 0;
    return static_cast<std::uint64_t>(value > 0.0f ? INT64_MAX : INT64_MIN);
}

}  // namespace

float radiusCompensation(float hardness) {
    if (!(hardness > 0.0f)) return std::rbegin(compensations)->factor;
    if (hardness >= 1.0f) return compensations[0].factor;
    const auto* lower = std::find_if(std::begin(compensations), std::end(compensations),
                                     [&](const Compensation& c) { return c.hardness <= hardness; });
    const Compensation& upper = *(lower - 1);
    const float share = (hardness - lower->hardness) / (upper.hardness - lower->hardness);
    return lower->factor + share * (upper.factor - lower->factor);
}

float radiusGrowth(const StampRounding& rounding) {
    const bool grows = rounding.procedural && !rounding.smears;
    return grows ? radiusCompensation(rounding.hardness) : 1.0f;
}

StampPoint quantizedStamp(const StampPoint& point, const StampRounding& rounding) {
    return quantizedStamp(point, radiusGrowth(rounding));
}

StampPoint quantizedStamp(const StampPoint& point, float growth) {
    StampPoint q = point;
    const float nominal = point.radius > minimumStampRadius
                              ? std::min(point.radius, maximumStampRadius)
                              : minimumStampRadius;
    q.radius = nominal * growth;
    const float steps = stepsAt(q.radius);
    const float inverse = 1.0f / steps;
    q.radius = raisedTo(q.radius, steps, inverse);
    q.x = flooredTo(finiteOr0(q.x), steps, inverse);
    q.y = flooredTo(finiteOr0(q.y), steps, inverse);
    q.angle = wholeDegrees(finiteOr0(q.angle));
    if (q.scaleX == 1.0f && q.scaleY == 1.0f) return q;  // most are

    q.scaleX = finiteOr0(q.scaleX);
    q.scaleY = finiteOr0(q.scaleY);
    if (q.radius > 1.0f && q.scaleY < 1.0f) q.scaleY = std::max(q.scaleY, 1.0f / nominal);
    q.scaleX = flooredTo(q.scaleX, scaleSteps, 1.0f / scaleSteps);
    q.scaleY = std::max(flooredTo(q.scaleY, scaleSteps, 1.0f / scaleSteps), 1.0f / scaleSteps);
    return q;
}

std::uint64_t stampKey(const StampPoint& quantized) {
    return placedStampKey(quantized).key;
}

StampKey placedStampKey(const StampPoint& quantized) {
    const StampPoint& q = quantized;
    const float floorX = floorOf(q.x), floorY = floorOf(q.y);
    std::uint64_t key = keyField(16.0f * q.radius);
    key = (key << 16) | keyField(q.angle);
    key = (key << 8) | keyField((q.scaleX + 4.0f) * scaleSteps);
    key = (key << 8) | keyField((q.scaleY + 4.0f) * scaleSteps);
    key = (key << 8) | keyField(16.0f * (q.x - floorX));
    key = (key << 8) | keyField(16.0f * (q.y - floorY));
    if (!isStampInReach(floorX, floorY)) return {key};
    return {key, static_cast<std::int32_t>(floorX), static_cast<std::int32_t>(floorY), true};
}

}  // namespace brushwork::npc
