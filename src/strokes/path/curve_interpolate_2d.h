// CurveInterpolate2D: walks along a guide curve, as far as the pen leads.
//
// Each point of the pen counts by its nearest place on the guide. On a closed guide the walk takes
// the shorter way round. Steps are measured along the guide.
#pragma once

#include <cstdint>

#include "brushwork/guide_curve.h"
#include "brushwork/ref.h"
#include "strokes/path/interpolate_2d.h"

namespace brushwork {

class CurveInterpolate2D final : public Interpolate2D {
  public:
    // The guide isn't null, and already lies in the coordinates of the points.
    explicit CurveInterpolate2D(Ref<GuideCurve> guide);

    void addPoint(const float xy[2]) override;
    // With one point the walk can begin already.
    bool advance(float step, float xy[2], float* t) override;
    // Goes to where the pen is, and answers that place however often it's asked.
    bool finish(float xy[2], float* t) override;
    bool tangent(float* x, float* y) const override;
    [[nodiscard]] std::int32_t kind() const override { return Curve; }
    [[nodiscard]] bool pending() const override;

  private:
    void aimAt(double arc);
    bool evaluate(double arc, float xy[2]);

    std::int32_t pointCount_ = 0;
    // Arc parameters. On a closed guide `to` may lie up to half a round outside 0..length.
    double from_ = 0.0;
    double to_ = 0.0;
    double position_ = 0.0;     // where the walk stands
    double evaluatedAt_ = 0.0;  // 0..length
    double length_ = 0.0;
    Ref<GuideCurve> guide_;
    bool started_ = false;
    bool closed_;
};

}  // namespace brushwork
