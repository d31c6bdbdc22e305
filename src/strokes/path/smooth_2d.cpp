#include "strokes/path/smooth_2d.h"

#include <algorithm>

namespace brushwork {

Smooth2D::Smooth2D(float drag, float damping, std::int32_t samples)
    : x_(drag, damping),
      y_(drag, damping),
      samples_(std::max(samples, 1)),
      samplesX_(static_cast<std::size_t>(samples_)),
      samplesY_(static_cast<std::size_t>(samples_)) {}

Smooth2D::~Smooth2D() = default;

void Smooth2D::addPoint(const float xy[2]) {
    count_ = x_.update(xy[0], samplesX_);
    y_.update(xy[1], samplesY_);
    readIndex_ = 0;
}

bool Smooth2D::nextPoint(float xy[2]) {
    if (readIndex_ >= count_) return false;
    const auto i = static_cast<std::size_t>(readIndex_++);
    xy[0] = samplesX_[i];
    xy[1] = samplesY_[i];
    return true;
}

}  // namespace brushwork
