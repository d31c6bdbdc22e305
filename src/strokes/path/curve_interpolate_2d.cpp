#include "strokes/path/curve_interpolate_2d.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace brushwork {

CurveInterpolate2D::CurveInterpolate2D(Ref<GuideCurve> guide)
    : guide_(std::move(guide)), closed_(guide_->isClosed()) {}

void CurveInterpolate2D::addPoint(const float xy[2]) {
    if (pointCount_ == 0) length_ = guide_->length();
    const double nearest = guide_->nearest(static_cast<double>(xy[0]), static_cast<double>(xy[1]));
    if (!std::isfinite(nearest)) return;
    const double arc = std::clamp(nearest, 0.0, length_);
    if (pointCount_ < 2) ++pointCount_;  // more than two is no news
    if (pointCount_ == 1) {
        from_ = to_ = position_ = arc;
    } else if (position_ != arc) {
        aimAt(arc);
    }
}

void CurveInterpolate2D::aimAt(double arc) {
    if (position_ < 0.0)
        position_ += length_;
    else if (position_ > length_)
        position_ -= length_;
    from_ = position_;
    to_ = arc;
    const double half = length_ / 2.0;
    if (closed_ && std::abs(from_ - arc) > half)
        to_ = from_ <= half ? arc - length_ : arc + length_;
}

bool CurveInterpolate2D::advance(float step, float xy[2], float* t) {
    if (pointCount_ < 1) return false;
    if (!started_) {
        if (!evaluate(position_, xy)) return false;
        started_ = true;
        if (t) *t = 0.0f;
        return true;
    }
    const double signedStep = static_cast<double>(from_ > to_ ? -step : step);
    if (!(std::abs(signedStep) <= std::abs(to_ - from_))) return false;
    const double next = position_ + signedStep;
    const double part = to_ == from_ ? 0.0 : (next - from_) / (to_ - from_);
    // A step that is lost in rounding ends the walk too.
    if (!(part >= 0.0 && part <= 1.0) || next == position_) return false;
    if (!evaluate(next, xy)) return false;
    position_ = next;
    if (t) *t = static_cast<float>(part);
    return true;
}

bool CurveInterpolate2D::finish(float xy[2], float* t) {
    if (pointCount_ < 2 || !evaluate(to_, xy)) return false;
    position_ = to_;
    started_ = true;
    if (t) *t = 1.0f;
    return true;
}

bool CurveInterpolate2D::evaluate(double arc, float xy[2]) {
    if (closed_)
        arc = arc < 0.0 ? arc + length_ : arc > length_ ? arc - length_ : arc;
    else
        arc = std::clamp(arc, 0.0, length_);
    const auto place = guide_->at(arc);
    if (!place) return false;
    xy[0] = static_cast<float>(place->x);
    xy[1] = static_cast<float>(place->y);
    evaluatedAt_ = arc;
    return true;
}

bool CurveInterpolate2D::tangent(float* x, float* y) const {
    const auto way = guide_->direction(evaluatedAt_);
    if (!way) return false;
    const double length = std::hypot(way->x, way->y);
    if (!(length > 0.0) || !std::isfinite(length)) return false;
    const double sign = from_ > to_ ? -1.0 : 1.0;
    *x = static_cast<float>(sign * way->x / length);
    *y = static_cast<float>(sign * way->y / length);
    return true;
}

bool CurveInterpolate2D::pending() const {
    return pointCount_ >= 1 && (!started_ || position_ != to_);
}

}  // namespace brushwork
