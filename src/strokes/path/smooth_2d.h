// Smooth2D: the inertia of strokes, for points that no stroke is painted with.
//
//     smooth->addPoint(pen);
//     while (smooth->nextPoint(place)) lineTo(place);
#pragma once

#include <cstdint>
#include <vector>

#include "brushwork/reference_count.h"
#include "strokes/path/smooth_channel.h"

namespace brushwork {

class Smooth2D final : public zn::ReferenceCount {
  public:
    // Drag and damping as of SmoothChannel; `samples` points, at least 1, are made of each input.
    Smooth2D(float drag, float damping, std::int32_t samples);

  protected:
    ~Smooth2D() override;

  public:
    // Points of the input before that weren't asked for are gone. The first input gives none.
    void addPoint(const float xy[2]);
    // The next point on the way to the last input. False, and nothing written, if none is left.
    bool nextPoint(float xy[2]);

  private:
    SmoothChannel x_, y_;
    std::int32_t samples_;
    std::vector<float> samplesX_, samplesY_;
    std::int32_t readIndex_ = 0;
    std::int32_t count_ = 0;
};

}  // namespace brushwork
