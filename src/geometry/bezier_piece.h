// Stretches of a plane curve as Bezier polygons: what bounds, tessellation and searches cut up.
#pragma once

#include <utility>
#include <vector>

#include "geometry/ag_compact_spline.h"

namespace brushwork::znAG {

struct CurvePoint {
    double x = 0.0;
    double y = 0.0;
};

// A place on the plane times its weight.
struct WeightedPoint {
    double x = 0.0;
    double y = 0.0;
    double w = 1.0;

    [[nodiscard]] CurvePoint place() const { return {x / w, y / w}; }
};

// A curve over [start, end], in control points of Bernstein polynomials. It begins in the first and
// ends in the last of them; while all weights are above 0 it stays within their hull.
struct BezierPiece {
    double start = 0.0;
    double end = 0.0;
    std::vector<WeightedPoint> points;

    [[nodiscard]] double middle() const { return start + (end - start) * 0.5; }
    [[nodiscard]] bool hasHull() const;  // are all weights above 0?
    // Is there a parameter between its ends to cut at?
    [[nodiscard]] bool canSplit() const { return start < middle() && middle() < end; }
    // Cuts it in the middle.
    [[nodiscard]] std::pair<BezierPiece, BezierPiece> split() const;
};

// One piece for each span of some length, in order, from the first two coordinates. None for a
// spline without contents, of one dimension, or with a coordinate, knot or weight that isn't
// finite.
[[nodiscard]] std::vector<BezierPiece> bezierPieces(const agCompactSpline& spline);

}  // namespace brushwork::znAG
