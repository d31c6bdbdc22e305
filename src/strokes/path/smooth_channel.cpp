#include "strokes/path/smooth_channel.h"

namespace brushwork {

SmoothChannel::SmoothChannel(float drag, float damping)
    : invDrag_(drag != 0.0f ? 1.0f / drag : 0.0f), damping_(damping) {}

std::int32_t SmoothChannel::update(float input, std::span<float> samples) {
    if (!started_ || samples.empty()) {
        position_ = input;
        started_ = true;
        return 0;
    }
    const auto count = static_cast<std::int64_t>(samples.size());
    const float wanted = (1.0f - damping_) * ((input - position_) * invDrag_ + velocity_);
    const float sum = static_cast<float>(count * (count + 1) / 2);
    const float change = (wanted - velocity_ - static_cast<float>(count) * acceleration_) / sum;
    for (float& sample : samples) {
        velocity_ = velocity_ + (acceleration_ + change);
        acceleration_ = acceleration_ + change;
        position_ = position_ + velocity_;
        sample = position_;
    }
    return static_cast<std::int32_t>(count);
}

}  // namespace brushwork
