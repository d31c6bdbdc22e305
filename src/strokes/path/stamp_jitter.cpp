#include "strokes/path/stamp_jitter.h"

#include <algorithm>

#include "strokes/path/random_part.h"
#include "strokes/path/stamp_ranges.h"

namespace brushwork {

namespace {

float lessened(float value, float jitter) {
    return std::max(value - randomPart() * (value * jitter / 20.0f), 0.0f);
}

}  // namespace

void jitterStamp(StampPoint& stamp, const StrokeParameters& parameters) {
    if (parameters.radiusJitter > 0.0f) {
        const float change = randomBothWays() * (parameters.radiusJitter * stamp.radius / 20.0f);
        stamp.radius = clampedStampRadius(stamp.radius - change);
    }
    if (parameters.opacityJitter > 0.0f)
        stamp.opacity = lessened(stamp.opacity, parameters.opacityJitter);
    if (parameters.flowJitter > 0.0f) stamp.flow = lessened(stamp.flow, parameters.flowJitter);
    if (parameters.angleJitter > 0.0f) stamp.angle -= randomBothWays() * parameters.angleJitter;
}

}  // namespace brushwork
