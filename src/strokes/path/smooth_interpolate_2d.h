// SmoothInterpolate2D: gives the pen inertia, then lets another follower walk the smoothed path.
//
// The path lags behind the pen. The first point goes on as it is, so that a stroke begins where the
// pen came down; each later one becomes a few samples, handed on one by one as the walk needs them.
#pragma once

#include <cstdint>
#include <vector>

#include "brushwork/ref.h"
#include "strokes/path/interpolate_2d.h"
#include "strokes/path/smooth_channel.h"

namespace brushwork {

class SmoothInterpolate2D final : public Interpolate2D {
  public:
    // `depth` stages of the same kind, one behind the other, before straight lines are walked.
    SmoothInterpolate2D(float drag, float damping, std::int32_t samplesPerPoint,
                        std::int32_t depth);
    // One stage before `inner`, which isn't null.
    SmoothInterpolate2D(float drag, float damping, std::int32_t samplesPerPoint,
                        Ref<Interpolate2D> inner);

    void addPoint(const float xy[2]) override;
    bool finish(float xy[2], float* t) override;
    bool advance(float step, float xy[2], float* t) override;
    bool tangent(float* x, float* y) const override;
    [[nodiscard]] std::int32_t kind() const override { return Smooth; }
    // Of samples that are yet unread it can't be told whether they move.
    [[nodiscard]] bool pending() const override;

  private:
    template <class Ask>
    bool drive(float* t, Ask ask);

    SmoothChannel x_;
    SmoothChannel y_;
    std::int32_t samplesPerPoint_;
    std::vector<float> samplesX_;  // of the latest input, samplesPerPoint_ each
    std::vector<float> samplesY_;
    std::int32_t readIndex_ = 0;
    std::int32_t sampleCount_ = 0;
    float inverseSamples_;
    Ref<Interpolate2D> inner_;
};

}  // namespace brushwork
