// The place of a plane curve that is nearest to a point.
#pragma once

#include <optional>

#include "geometry/bezier_piece.h"

namespace brushwork::znAG {

struct NearestPlace {
    double t = 0.0;
    CurvePoint place;
    double distance = 0.0;
};

// The nearest of all places, not just of those around, also on curves that cross themselves or run
// close to themselves: no place is nearer by more than a billionth of the greater of the curve's
// size and the distance. Of several that are equally near, one. Nothing where there is no curve
// (see bezierPieces) and for a point that isn't finite.
[[nodiscard]] std::optional<NearestPlace> nearestOnCurve(const agCompactSpline& spline,
                                                         CurvePoint point);

}  // namespace brushwork::znAG
