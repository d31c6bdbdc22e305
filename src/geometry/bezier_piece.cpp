#include "geometry/bezier_piece.h"

#include <algorithm>
#include <cmath>

namespace brushwork::znAG {
namespace {

WeightedPoint mix(const WeightedPoint& a, const WeightedPoint& b, double part) {
    const double rest = 1.0 - part;
    return {rest * a.x + part * b.x, rest * a.y + part * b.y, rest * a.w + part * b.w};
}

// The control points of a span in order.
std::vector<WeightedPoint> spanPoints(const AgCompactView& view, std::int32_t span) {
    std::vector<WeightedPoint> points(static_cast<std::size_t>(view.degree) + 1);
    for (std::size_t k = 0; k < points.size(); ++k) {
        const double* const p = view.points + (static_cast<std::size_t>(span) + k) *
                                                  static_cast<std::size_t>(view.stride);
        points[k] = {p[0], p[1], view.rational ? p[view.dim] : 1.0};
    }
    return points;
}

// The recurrence with a parameter of its own in every round: the first `late` rounds take the
// span's end, the others its start.
WeightedPoint polarValue(const double* knots, std::vector<WeightedPoint> d, std::size_t late) {
    const std::size_t m = d.size() - 1;
    for (std::size_t r = 1; r <= m; ++r) {
        const double t = r <= late ? knots[m] : knots[m - 1];
        for (std::size_t k = m; k >= r; --k)
            d[k] = mix(d[k - 1], d[k], (t - knots[k - 1]) / (knots[k + m - r] - knots[k - 1]));
    }
    return d[m];
}

bool isFinite(const BezierPiece& piece) {
    return std::isfinite(piece.start) && std::isfinite(piece.end) &&
           std::ranges::all_of(piece.points, [](const WeightedPoint& p) {
               return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.w);
           });
}

}  // namespace

bool BezierPiece::hasHull() const {
    return std::ranges::all_of(points, [](const WeightedPoint& p) { return p.w > 0.0; });
}

std::pair<BezierPiece, BezierPiece> BezierPiece::split() const {
    std::pair<BezierPiece, BezierPiece> halves;
    auto& [left, right] = halves;
    left.start = start;
    left.end = right.start = middle();
    right.end = end;
    right.points = points;
    left.points.reserve(points.size());
    for (std::size_t r = 0; r < points.size(); ++r) {
        left.points.push_back(right.points.front());
        for (std::size_t k = 0; k + r + 1 < points.size(); ++k)
            right.points[k] = mix(right.points[k], right.points[k + 1], 0.5);
    }
    return halves;
}

std::vector<BezierPiece> bezierPieces(const agCompactSpline& spline) {
    std::vector<BezierPiece> pieces;
    const AgCompactView view = spline.view();
    if (view.dim < 2 || !std::ranges::is_sorted(spline.knots())) return pieces;
    for (std::int32_t span = 0; span < view.spans; ++span) {
        if (!(view.knots[span] < view.knots[span + 1])) continue;
        BezierPiece piece{view.knots[span], view.knots[span + 1], {}};
        const std::vector<WeightedPoint> points = spanPoints(view, span);
        for (std::size_t k = 0; k < points.size(); ++k)
            piece.points.push_back(polarValue(view.knots + (span - view.degree + 1), points, k));
        if (!isFinite(piece)) return {};
        pieces.push_back(std::move(piece));
    }
    return pieces;
}

}  // namespace brushwork::znAG
