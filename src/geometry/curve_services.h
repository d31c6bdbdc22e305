// What a host offers the engine about a plane curve: bounds, points, directions, tessellation. For
// lengths see curve_length, for the nearest place curve_nearest.
//
// All are pure functions that only read the spline, in its first two coordinates; any number of
// threads may ask about one spline. Parameters are clamped to the domain. A spline without
// contents, of one dimension or with numbers that aren't finite gives the empty answer.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "geometry/bezier_piece.h"

namespace brushwork::znAG {

struct CurveBox {
    CurvePoint low;
    CurvePoint high;
};

// A point of a polyline and where on the curve it lies.
struct CurveSample {
    double x = 0.0;
    double y = 0.0;
    double t = 0.0;
};

struct TessellationOptions {
    double tolerance = 0.1;  // in the curve's unit; above 0
    std::size_t mostPoints = 1u << 20;
};

// Does the curve's form say so?
[[nodiscard]] bool isClosedCurve(const agCompactSpline& spline);

// The box around the curve itself: it holds all of it, and is larger than it need be by under a
// billionth of the box around the control points. Where weights aren't positive, it is the box of
// points that lie close.
[[nodiscard]] std::optional<CurveBox> curveBounds(const agCompactSpline& spline);

[[nodiscard]] std::optional<CurvePoint> curvePoint(const agCompactSpline& spline, double t);

// The way the curve goes on from t, at the end of the domain the way it came; of length 1, or 0 if
// the curve is a single point. Where it stands still for an instant, the way it goes next.
[[nodiscard]] std::optional<CurvePoint> curveDirection(const agCompactSpline& spline, double t);

// A polyline from the start of the curve to its end. No point of the curve is further from it than
// the tolerance, however sharp the curve's bends, unless mostPoints cut the work short. Ends of
// spans are among its points, however few those may be. Of a closed curve the last point is the
// first, to the bit.
[[nodiscard]] std::vector<CurveSample> tessellateCurve(const agCompactSpline& spline,
                                                       const TessellationOptions& options = {});

}  // namespace brushwork::znAG
