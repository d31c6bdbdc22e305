#include "geometry/curve_services.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brushwork::znAG {
namespace {

constexpr double boundsPart = 1e-10;
// Far from the origin coordinates aren't any finer.
constexpr double roundingPart = 1e-14;
// Halvings of a span; far beyond what positive weights need.
constexpr int deepest = 40;
// Without positive weights there is no hull to tell when to stop.
constexpr int deepestWithoutHull = 12;

CurveBox emptyBox() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return {{infinity, infinity}, {-infinity, -infinity}};
}

void include(CurveBox& box, CurvePoint p) {
    box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y)};
    box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y)};
}

CurveBox hullOf(const BezierPiece& piece) {
    CurveBox box = emptyBox();
    for (const WeightedPoint& p : piece.points) include(box, p.place());
    return box;
}

// By how much does the one reach out of the other?
double excess(const CurveBox& inner, const CurveBox& outer) {
    return std::max({outer.low.x - inner.low.x, outer.low.y - inner.low.y,
                     inner.high.x - outer.high.x, inner.high.y - outer.high.y});
}

// A box that grows over pieces until none reaches out of it.
class GrowingBox {
  public:
    explicit GrowingBox(const std::vector<BezierPiece>& pieces) {
        CurveBox hull = emptyBox();
        for (const BezierPiece& piece : pieces) {
            takeEnds(piece);
            for (const WeightedPoint& p : piece.points)
                if (p.w > 0.0) include(hull, p.place());
        }
        const double size = std::max(hull.high.x - hull.low.x, hull.high.y - hull.low.y);
        const double far = std::max({std::abs(hull.low.x), std::abs(hull.low.y),
                                     std::abs(hull.high.x), std::abs(hull.high.y)});
        tolerance_ = std::max(size * boundsPart, far * roundingPart);
        for (const BezierPiece& piece : pieces) take(piece, 0);
    }
    [[nodiscard]] const CurveBox& box() const { return box_; }

  private:
    void takeEnds(const BezierPiece& piece) {
        include(box_, piece.points.front().place());
        include(box_, piece.points.back().place());
    }
    void take(const BezierPiece& piece, int depth) {
        takeEnds(piece);
        const bool hull = piece.hasHull();
        if (depth >= (hull ? deepest : deepestWithoutHull) || !piece.canSplit()) return;
        if (hull) {
            const CurveBox around = hullOf(piece);
            if (excess(around, box_) <= tolerance_) {
                include(box_, around.low);
                include(box_, around.high);
                return;
            }
        }
        const auto [left, right] = piece.split();
        take(left, depth + 1);
        take(right, depth + 1);
    }

    CurveBox box_ = emptyBox();
    double tolerance_ = 0.0;
};

double distanceToSegment(CurvePoint p, CurvePoint a, CurvePoint b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double square = dx * dx + dy * dy;
    const double part =
        square > 0.0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0.0;
    return std::hypot(p.x - (a.x + part * dx), p.y - (a.y + part * dy));
}

// The hull lies around the segment as far as its corners do.
bool isFlat(const BezierPiece& piece, double tolerance) {
    const CurvePoint a = piece.points.front().place();
    const CurvePoint b = piece.points.back().place();
    return piece.hasHull() && std::ranges::all_of(piece.points, [&](const WeightedPoint& p) {
               return distanceToSegment(p.place(), a, b) <= tolerance;
           });
}

class Polyline {
  public:
    explicit Polyline(const TessellationOptions& options)
        : tolerance_(options.tolerance), most_(options.mostPoints) {}

    // `open`: pieces that are still to come at least.
    void add(const BezierPiece& piece, std::size_t open, int depth = 0) {
        if (samples_.empty()) push(piece.points.front(), piece.start);
        const bool deep = depth >= (piece.hasHull() ? deepest : deepestWithoutHull);
        const bool full = samples_.size() + open + 1 >= most_;
        if (deep || full || !piece.canSplit() || isFlat(piece, tolerance_)) {
            push(piece.points.back(), piece.end);
            return;
        }
        const auto [left, right] = piece.split();
        add(left, open + 1, depth + 1);
        add(right, open, depth + 1);
    }
    [[nodiscard]] std::vector<CurveSample> take() { return std::move(samples_); }

  private:
    void push(const WeightedPoint& p, double t) {
        const CurvePoint place = p.place();
        samples_.push_back({place.x, place.y, t});
    }

    double tolerance_;
    std::size_t most_;
    std::vector<CurveSample> samples_;
};

CurvePoint normalized(double x, double y) {
    const double largest = std::max(std::abs(x), std::abs(y));
    if (!(largest > 0.0) || !std::isfinite(largest)) return {};
    x /= largest;
    y /= largest;
    const double length = std::hypot(x, y);
    return {x / length, y / length};
}

// Toward, or at the end away from, the nearest point that isn't the one at t.
CurvePoint chordDirection(const AgCompactView& view, double t, std::vector<double>& work) {
    agCompactSplineEval eval;
    const std::size_t dim = static_cast<std::size_t>(view.dim);
    double* const here = work.data();
    double* const there = here + dim;
    const double way = t < view.end() ? view.end() - t : view.start() - t;
    eval.evaluate(view, t, here);
    for (int halvings = 30; halvings >= 0; --halvings) {
        eval.evaluate(view, t + std::ldexp(way, -halvings), there);
        const double sign = way > 0.0 ? 1.0 : -1.0;
        const CurvePoint direction =
            normalized(sign * (there[0] - here[0]), sign * (there[1] - here[1]));
        if (direction.x != 0.0 || direction.y != 0.0) return direction;
    }
    return {};
}

}  // namespace

bool isClosedCurve(const agCompactSpline& spline) {
    return spline.spans() > 0 && spline.form() >= AG_CLOSED;
}

std::optional<CurveBox> curveBounds(const agCompactSpline& spline) {
    const std::vector<BezierPiece> pieces = bezierPieces(spline);
    if (pieces.empty()) return std::nullopt;
    return GrowingBox(pieces).box();
}

std::optional<CurvePoint> curvePoint(const agCompactSpline& spline, double t) {
    if (spline.dim() < 2) return std::nullopt;
    std::vector<double> point(static_cast<std::size_t>(spline.dim()));
    agCompactSplineEval eval;
    if (!eval.evaluate(spline.view(), t, point.data())) return std::nullopt;
    return CurvePoint{point[0], point[1]};
}

std::optional<CurvePoint> curveDirection(const agCompactSpline& spline, double t) {
    if (spline.dim() < 2) return std::nullopt;
    const AgCompactView view = spline.view();
    const std::size_t dim = static_cast<std::size_t>(view.dim);
    std::vector<double> work(2 * dim);
    agCompactSplineEval eval;
    if (!eval.evaluate(view, t, work.data(), work.data() + dim)) return std::nullopt;
    const CurvePoint tangent = normalized(work[dim], work[dim + 1]);
    if (tangent.x != 0.0 || tangent.y != 0.0) return tangent;
    t = agClampParameter(t, view.start(), view.end());
    return chordDirection(view, t, work);
}

std::vector<CurveSample> tessellateCurve(const agCompactSpline& spline,
                                         const TessellationOptions& options) {
    const std::vector<BezierPiece> pieces = bezierPieces(spline);
    if (pieces.empty() || !(options.tolerance > 0.0)) return {};
    Polyline polyline(options);
    for (std::size_t i = 0; i < pieces.size(); ++i) polyline.add(pieces[i], pieces.size() - i - 1);
    std::vector<CurveSample> samples = polyline.take();
    if (isClosedCurve(spline)) {
        samples.back().x = samples.front().x;
        samples.back().y = samples.front().y;
    }
    return samples;
}

}  // namespace brushwork::znAG
