#include "strokes/path/stroke_interpolator.h"

#include <algorithm>
#include <cmath>

#include "strokes/path/follower_choice.h"
#include "strokes/path/stamp_jitter.h"
#include "strokes/path/stamp_ranges.h"
#include "strokes/path/step_rule.h"
#include "strokes/path/stroke_switches.h"

namespace brushwork::npc {

namespace {

constexpr float startOfSegment = 0.001f;
constexpr float farthest = 524288.0f;
constexpr StrokeInterpolator::Transform identity = {1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f};

// What is interpolated along a line, in the order of the lines; the angle goes its own way.
constexpr std::array<float StampPoint::*, 7> lineFields = {
    &StampPoint::radius, &StampPoint::opacity, &StampPoint::flow,           &StampPoint::angle,
    &StampPoint::scaleX, &StampPoint::scaleY,  &StampPoint::textureStrength};

bool isFinite(const StampPoint& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) &&
           std::ranges::all_of(lineFields, [&](auto field) { return std::isfinite(point.*field); });
}

float reachOf(const StampPoint& stamp) {
    return stamp.radius * stamp.scaleY * stamp.scaleY / stamp.scaleX;
}

// In radians, rounded once, so that it is the same on every system.
float directionOf(float x, float y) {
    return static_cast<float>(std::atan2(static_cast<double>(y), static_cast<double>(x)));
}

void mapPlace(const StrokeInterpolator::Transform& m, const float xy[2], float& x, float& y) {
    x = m[0] * xy[0] + m[1] * xy[1] + m[2];
    y = m[3] * xy[0] + m[4] * xy[1] + m[5];
}

}  // namespace

void StrokeInterpolator::begin(const StrokeParameters* parameters) {
    first_ = true;
    t_ = startOfSegment;
    step_ = 0.0f;
    parameters_ = parameters;
    if (!parameters) return;
    followDirection_ = parameters->followDirection;
    follower_ = chooseFollower(parameters->interpolationKind, parameters->guide, follower_);
    transform_ = identity;
    spacingScale_ = 1.0f;
}

void StrokeInterpolator::addPoint(StampPoint& point) {
    if (!parameters_ || !isFinite(point)) return;
    if (first_) {
        first_ = false;
        current_ = point;
        current_.radius = clampedStampRadius(point.radius);
        last_ = current_;
    }
    const float xy[2] = {std::clamp(point.x, -farthest, farthest),
                         std::clamp(point.y, -farthest, farthest)};
    follower_->addPoint(xy);
    drawLines(point);
    current_ = point;
    t_ = startOfSegment;
}

void StrokeInterpolator::drawLines(StampPoint& point) {
    // The shorter way round; half a turn goes backward.
    const float turn = point.angle - current_.angle;
    if (turn >= 180.0f)
        point.angle -= 360.0f;
    else if (turn < -180.0f)
        point.angle += 360.0f;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const float from = current_.*lineFields[i];
        lines_[i].setLine(from, point.*lineFields[i] - from);
    }
    point.angle = wrappedDegrees(point.angle);
}

bool StrokeInterpolator::nextStamp(StampPoint& stamp) {
    if (first_) return false;
    const float reach = reachOf(last_);
    chooseStep(reach);
    float xy[2];
    if (!follower_->advance(step_, xy, &t_)) return false;
    mapPlace(transform_, xy, stamp.x, stamp.y);
    evaluateAt(t_, stamp);
    turnAngle(stamp);
    jitterStamp(stamp, *parameters_);
    const float turn = stamp.angle - last_.angle;
    if (turn > 180.0f)
        stamp.angle -= 360.0f;
    else if (turn < -180.0f)
        stamp.angle += 360.0f;
    // A jittered step is drawn here, once a stamp.
    step_ = 0.0f;
    chooseStep(reach);
    stamp.angle = wrappedDegrees(stamp.angle);
    last_ = stamp;
    return true;
}

void StrokeInterpolator::evaluateAt(float t, StampPoint& stamp) const {
    for (std::size_t i = 0; i < lines_.size(); ++i) stamp.*lineFields[i] = lines_[i].eval(t);
    stamp.radius = clampedStampRadius(stamp.radius);
}

void StrokeInterpolator::turnAngle(StampPoint& stamp) {
    float offset = -90.0f;
    if (yFlipMode() == 1) {
        stamp.angle = -stamp.angle;
        offset = 90.0f;
    }
    if (!followDirection_) return;
    float x = 0.0f;
    float y = 0.0f;
    tangent(x, y);
    if (x != 0.0f || y != 0.0f) stamp.angle += directionOf(x, y) * 180.0f / 3.1415927f + offset;
}

void StrokeInterpolator::chooseStep(float reach) {
    step_ = nextStep(step_, reach, spacingScale_, parameters_->spacingJitter);
}

bool StrokeInterpolator::copyOf(const StampPoint& stamp, std::int32_t n, StampPoint& copy) const {
    if (n != 0) return false;
    copy = stamp;
    return true;
}

void StrokeInterpolator::tangent(float& x, float& y) {
    x = 0.0f;
    y = 0.0f;
    if (first_) return;
    float way[2];
    if (!follower_->tangent(&way[0], &way[1])) return;
    const float origin[2] = {0.0f, 0.0f};
    float originX = 0.0f;
    float originY = 0.0f;
    mapPlace(transform_, origin, originX, originY);
    mapPlace(transform_, way, x, y);
    x -= originX;
    y -= originY;
}

}  // namespace brushwork::npc
