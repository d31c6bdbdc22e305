#include "strokes/path/smooth_interpolate_2d.h"

#include <algorithm>
#include <utility>

#include "strokes/path/flt_interpolate_2d.h"

namespace brushwork {

namespace {

Ref<Interpolate2D> innerOf(float drag, float damping, std::int32_t samplesPerPoint,
                           std::int32_t depth) {
    if (depth <= 1) return makeRef<FltInterpolate2D>(true);
    return makeRef<SmoothInterpolate2D>(drag, damping, samplesPerPoint, depth - 1);
}

}  // namespace

SmoothInterpolate2D::SmoothInterpolate2D(float drag, float damping, std::int32_t samplesPerPoint,
                                         std::int32_t depth)
    : SmoothInterpolate2D(drag, damping, samplesPerPoint,
                          innerOf(drag, damping, samplesPerPoint, depth)) {}

SmoothInterpolate2D::SmoothInterpolate2D(float drag, float damping, std::int32_t samplesPerPoint,
                                         Ref<Interpolate2D> inner)
    : x_(drag, damping),
      y_(drag, damping),
      samplesPerPoint_(std::max(samplesPerPoint, 1)),
      samplesX_(static_cast<std::size_t>(samplesPerPoint_)),
      samplesY_(static_cast<std::size_t>(samplesPerPoint_)),
      inverseSamples_(1.0f / static_cast<float>(samplesPerPoint_)),
      inner_(std::move(inner)) {}

void SmoothInterpolate2D::addPoint(const float xy[2]) {
    const bool first = !x_.started();
    const std::int32_t count = x_.update(xy[0], samplesX_);
    y_.update(xy[1], samplesY_);
    sampleCount_ = samplesPerPoint_;
    readIndex_ = samplesPerPoint_ - count;
    if (first) inner_->addPoint(xy);
}

template <class Ask>
bool SmoothInterpolate2D::drive(float* t, Ask ask) {
    float innerT = 0.0f;
    while (!ask(&innerT)) {
        if (readIndex_ >= sampleCount_) return false;
        const auto i = static_cast<std::size_t>(readIndex_++);
        const float sample[2] = {samplesX_[i], samplesY_[i]};
        inner_->addPoint(sample);
    }
    if (t) {
        // Below 0 while the walk is still on the samples of the input before.
        const float walked = (static_cast<float>(readIndex_ - 1) + innerT) * inverseSamples_;
        *t = std::max(walked, 0.0f);
    }
    return true;
}

bool SmoothInterpolate2D::advance(float step, float xy[2], float* t) {
    return drive(t, [&](float* innerT) { return inner_->advance(step, xy, innerT); });
}

bool SmoothInterpolate2D::finish(float xy[2], float* t) {
    return drive(t, [&](float* innerT) { return inner_->finish(xy, innerT); });
}

bool SmoothInterpolate2D::tangent(float* x, float* y) const {
    return inner_->tangent(x, y);
}

bool SmoothInterpolate2D::pending() const {
    return readIndex_ < sampleCount_ || inner_->pending();
}

}  // namespace brushwork
