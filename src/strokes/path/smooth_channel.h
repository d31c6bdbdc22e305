// SmoothChannel: inertia for one coordinate. Each input becomes a few samples that move toward it
// with a linearly changing acceleration.
#pragma once

#include <cstdint>
#include <span>

namespace brushwork {

class SmoothChannel {
  public:
    // drag: how slowly inputs pull, 0 takes away their pull. damping: 0..1, the share of the
    // motion that an input can't change.
    SmoothChannel(float drag, float damping);

    // Fills `samples` on the way to `input` and answers how many there are. The first input, and
    // any without room for samples, sets the position and gives none.
    std::int32_t update(float input, std::span<float> samples);

    [[nodiscard]] bool started() const { return started_; }
    [[nodiscard]] float position() const { return position_; }

  private:
    float invDrag_;
    float damping_;
    float velocity_ = 0.0f;
    float acceleration_ = 0.0f;
    float position_ = 0.0f;
    bool started_ = false;
};

}  // namespace brushwork
