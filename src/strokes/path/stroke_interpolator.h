// npc::StrokeInterpolator: turns the points of a pen into evenly spaced stamps.
//
//     interpolator.begin(&parameters);
//     for (StampPoint& point : pen) {
//         interpolator.addPoint(point);
//         while (interpolator.nextStamp(stamp)) draw(stamp);
//     }
//
// What is left over at the end and shorter than a step stays unpainted. One interpolator serves
// stroke after stroke, on the thread that feeds them. After `begin` nothing allocates.
#pragma once

#include <array>

#include "brushwork/stamp_point.h"
#include "brushwork/stroke_parameters.h"
#include "foundation/profiles/poly_1d.h"
#include "strokes/path/interpolate_2d.h"

namespace brushwork::npc {

class StrokeInterpolator {
  public:
    // Two rows of three: x' = m[0] x + m[1] y + m[2], y' = m[3] x + m[4] y + m[5].
    using Transform = std::array<float, 6>;

    StrokeInterpolator() = default;
    StrokeInterpolator(const StrokeInterpolator&) = delete;
    StrokeInterpolator& operator=(const StrokeInterpolator&) = delete;

    // Slots, in this order in every class.
    virtual ~StrokeInterpolator() = default;
    // Begins a stroke, with transform and spacing scale as at first. The parameters are borrowed
    // until the next begin. Null: points are ignored, there are no stamps.
    virtual void begin(const StrokeParameters* parameters);
    // Feeds a point of the pen. Its angle is brought into [0, 360). A point with a number that
    // isn't finite is ignored; places more than half a million pixels from the origin are brought
    // there, since steps could get lost in the rounding further out.
    virtual void addPoint(StampPoint& point);
    // The next stamp on the way to the last point. False, and nothing changed, if it needs more
    // points; then `stamp` isn't written.
    virtual bool nextStamp(StampPoint& stamp);
    // The way of travel under the transform, of length 1 before it; 0 if there is none.
    virtual void tangent(float& x, float& y);
    // For a class that repeats stamps elsewhere. The n-th place, from 0 on, at which a stamp beside
    // the path is laid; false behind the last. Here the stamp's own, alone.
    virtual bool copyOf(const StampPoint& stamp, std::int32_t n, StampPoint& copy) const;
    // The way of travel of the stamp that nextStamp gave last.
    virtual void stampTangent(float& x, float& y) { tangent(x, y); }

    // Multiplies the step between stamps; 1 at begin.
    void setSpacingScale(float scale) { spacingScale_ = scale; }
    [[nodiscard]] float spacingScale() const { return spacingScale_; }
    // Applied to the place of each stamp; the identity at begin.
    void setTransform(const Transform& transform) { transform_ = transform; }
    [[nodiscard]] const Transform& getTransform() const { return transform_; }
    // Null before the first begin.
    [[nodiscard]] const Ref<Interpolate2D>& follower() const { return follower_; }

  protected:
    // The last stamp that went out; before the first one, the first point of the pen.
    [[nodiscard]] const StampPoint& last() const { return last_; }
    // No point came in yet?
    [[nodiscard]] bool first() const { return first_; }

  private:
    void drawLines(StampPoint& point);
    void evaluateAt(float t, StampPoint& stamp) const;
    void turnAngle(StampPoint& stamp);
    void chooseStep(float reach);

    Ref<Interpolate2D> follower_;
    const StrokeParameters* parameters_ = nullptr;
    StampPoint current_;  // the last point of the pen
    StampPoint last_;     // the last stamp
    // From the point before to the last one, over 0..1: radius to textureStrength, in their order.
    std::array<Poly1D, 7> lines_;
    bool followDirection_ = false;
    Transform transform_ = {1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f};
    float t_ = 0.0f;     // where the last stamp lies between these points
    float step_ = 0.0f;  // to the next stamp, in pixels
    float spacingScale_ = 1.0f;
    bool first_ = true;
};

}  // namespace brushwork::npc
