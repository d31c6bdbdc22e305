#include "strokes/path/flt_interpolate_2d.h"

#include <algorithm>
#include <cmath>

namespace brushwork {

void FltInterpolate2D::addPoint(const float xy[2]) {
    if (pointCount_ < 2) ++pointCount_;  // more than two is no news
    if (pointCount_ == 1) {
        std::copy_n(xy, 2, start_);
        std::copy_n(xy, 2, end_);
        std::copy_n(xy, 2, cursor_);
        return;
    }
    if (carryRemainder_) {
        carry_ = remaining_;
        std::copy_n(end_, 2, cursor_);
    }
    std::copy_n(cursor_, 2, start_);
    std::copy_n(xy, 2, end_);
    aim();
    remaining_ = length_;
    if (carryRemainder_) {
        cursor_[0] -= direction_[0] * carry_;
        cursor_[1] -= direction_[1] * carry_;
        remaining_ = length_ + carry_;
    }
}

void FltInterpolate2D::aim() {
    const float dx = end_[0] - start_[0];
    const float dy = end_[1] - start_[1];
    length_ = std::sqrt(dx * dx + dy * dy);
    const bool goes = length_ > 0.0f;
    inverseLength_ = goes ? 1.0f / length_ : 0.0f;
    direction_[0] = goes ? dx * inverseLength_ : 0.0f;
    direction_[1] = goes ? dy * inverseLength_ : 0.0f;
    if (!goes) length_ = 0.0f;
}

bool FltInterpolate2D::answer(float xy[2], float* t, float fraction) const {
    std::copy_n(cursor_, 2, xy);
    if (t) *t = fraction;
    return true;
}

bool FltInterpolate2D::answerFirst(float xy[2], float* t) {
    firstStamp_ = false;
    return answer(xy, t, 0.0f);
}

bool FltInterpolate2D::advance(float step, float xy[2], float* t) {
    if (pointCount_ < 2) return false;
    if (firstStamp_) return answerFirst(xy, t);
    if (!(remaining_ >= step)) return false;
    // A step that shrank since the corner would lie before it: then the corner is next.
    const float move = std::max(carry_, step);
    carry_ = 0.0f;
    cursor_[0] += direction_[0] * move;
    cursor_[1] += direction_[1] * move;
    remaining_ -= move;
    return answer(xy, t, length_ > 0.0f ? 1.0f - remaining_ / length_ : 0.0f);
}

bool FltInterpolate2D::finish(float xy[2], float* t) {
    if (pointCount_ < 2) return false;
    if (firstStamp_) return answerFirst(xy, t);
    if (!(remaining_ > 0.0f)) return false;
    std::copy_n(end_, 2, cursor_);
    remaining_ = 0.0f;
    return answer(xy, t, 1.0f);
}

bool FltInterpolate2D::tangent(float* x, float* y) const {
    if (pointCount_ < 2 || !(length_ > 0.0f)) return false;
    *x = direction_[0];
    *y = direction_[1];
    return true;
}

bool FltInterpolate2D::pending() const {
    return pointCount_ >= 2 && (firstStamp_ || remaining_ > 0.0f);
}

}  // namespace brushwork
