// FltInterpolate2D: walks the straight lines from point to point.
#pragma once

#include <cstdint>

#include "strokes/path/interpolate_2d.h"

namespace brushwork {

class FltInterpolate2D final : public Interpolate2D {
  public:
    // With carryRemainder what is left over at a corner counts on the next line, so that distances
    // stay even along the polyline. Without it each line begins where the walk stopped.
    explicit FltInterpolate2D(bool carryRemainder) : carryRemainder_(carryRemainder) {}

    void addPoint(const float xy[2]) override;
    bool finish(float xy[2], float* t) override;
    bool advance(float step, float xy[2], float* t) override;
    bool tangent(float* x, float* y) const override;
    [[nodiscard]] std::int32_t kind() const override { return Straight; }
    [[nodiscard]] bool pending() const override;

  private:
    void aim();
    bool answer(float xy[2], float* t, float fraction) const;
    bool answerFirst(float xy[2], float* t);

    std::int32_t pointCount_ = 0;
    float start_[2] = {};   // of the line
    float end_[2] = {};     // of the line
    float cursor_[2] = {};  // where the walk stands
    float length_ = 0.0f;   // of the line
    float inverseLength_ = 0.0f;
    float remaining_ = 0.0f;  // from the cursor to the end of the line
    float direction_[2] = {};
    float carry_ = 0.0f;  // what was left over at the last corner
    bool firstStamp_ = true;
    bool carryRemainder_;
};

}  // namespace brushwork
