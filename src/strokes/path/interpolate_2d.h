// Interpolate2D: walks along the path through a row of points, at distances that the walker says.
//
//     follower->addPoint(first);
//     follower->addPoint(second);
//     while (follower->advance(distance, place, &t)) stamp(place);   // until more points come
#pragma once

#include <cstdint>

#include "brushwork/resource.h"

namespace brushwork {

class Interpolate2D : public Resource {
  public:
    // What kind() answers.
    enum Kind : std::int32_t { Straight = 0, Smooth = 1, Curve = 2 };

    // Slots behind Resource's, in this order in every class.
    virtual void addPoint(const float xy[2]) = 0;
    // Walks to the end of what advance left over. False, and nothing written, if nothing is left.
    virtual bool finish(float xy[2], float* t) = 0;
    // Walks on by `step`, in the unit of the points. The first call answers where the path begins.
    // t, which may be null, tells how much of the way from the last input point to the latest one
    // is covered, 0..1. False, and nothing written, if the path isn't long enough.
    virtual bool advance(float step, float xy[2], float* t) = 0;
    // The way of travel, of length 1. False, and nothing written, before there is one.
    virtual bool tangent(float* x, float* y) const = 0;
    [[nodiscard]] virtual std::int32_t kind() const = 0;
    // Is some of the path so far still to be walked?
    [[nodiscard]] virtual bool pending() const = 0;

    // The same under the names of a reader of points.
    bool nextPoint(float point[2], float* fraction) { return finish(point, fraction); }
    bool step(float distance, float point[2], float* fraction) {
        return advance(distance, point, fraction);
    }
    bool direction(float* dx, float* dy) const { return tangent(dx, dy); }

  protected:
    ~Interpolate2D() override;
};

}  // namespace brushwork
