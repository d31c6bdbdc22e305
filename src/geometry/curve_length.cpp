#include "geometry/curve_length.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "geometry/ag_node.h"
#include "geometry/bezier_piece.h"

namespace brushwork::znAG {
namespace {

// Gauss and Legendre's rule with eight points on [-1, 1]; the other four are mirrored.
constexpr std::array<double, 4> places = {0.1834346424956498049, 0.5255324099163289858,
                                          0.7966664774136267396, 0.9602898564975362317};
constexpr std::array<double, 4> weights = {0.3626837833783619830, 0.3137066458778872873,
                                           0.2223810344533744705, 0.1012285362903762591};
constexpr int deepest = 20;
constexpr double tolerancePart = 1e-11;
constexpr std::size_t mostMarks = 1u << 16;
constexpr int mostSteps = 60;

class Speed {
  public:
    explicit Speed(const AgCompactView& view)
        : view_(view), out_(2 * static_cast<std::size_t>(view.dim)) {}
    double operator()(double t) {
        const std::size_t dim = static_cast<std::size_t>(view_.dim);
        eval_.evaluate(view_, t, out_.data(), out_.data() + dim);
        return std::hypot(out_[dim], out_[dim + 1]);
    }

  private:
    const AgCompactView& view_;
    agCompactSplineEval eval_;
    std::vector<double> out_;
};

double polygonLength(const std::vector<BezierPiece>& pieces) {
    double sum = 0.0;
    for (const BezierPiece& piece : pieces)
        for (std::size_t k = 1; k < piece.points.size(); ++k) {
            const CurvePoint a = piece.points[k - 1].place();
            const CurvePoint b = piece.points[k].place();
            const double side = std::hypot(b.x - a.x, b.y - a.y);
            if (std::isfinite(side)) sum += side;
        }
    return sum;
}

}  // namespace

CurveLength::CurveLength(const agCompactSpline& spline) : view_(spline.view()) {
    const std::vector<BezierPiece> pieces = bezierPieces(spline);
    if (pieces.empty()) return;
    tolerance_ = tolerancePart * polygonLength(pieces);
    marks_.push_back({pieces.front().start, 0.0});
    for (const BezierPiece& piece : pieces)
        measure(piece.start, piece.end, stretch(piece.start, piece.end), 0);
    if (!std::isfinite(length())) marks_.clear();
}

double CurveLength::stretch(double start, double end) const {
    Speed speed(view_);
    const double middle = start + (end - start) * 0.5;
    const double half = (end - start) * 0.5;
    double sum = 0.0;
    for (std::size_t k = 0; k < places.size(); ++k)
        sum += weights[k] * (speed(middle - half * places[k]) + speed(middle + half * places[k]));
    return sum * half;
}

void CurveLength::measure(double start, double end, double whole, int depth) {
    const double middle = start + (end - start) * 0.5;
    const double left = stretch(start, middle);
    const double right = stretch(middle, end);
    const bool good = std::abs(left + right - whole) <= tolerance_;
    const bool enough = depth >= deepest || marks_.size() >= mostMarks;
    if (good || enough || !(start < middle && middle < end)) {
        const double before = marks_.back().s;
        marks_.push_back({middle, before + left});
        marks_.push_back({end, before + left + right});
        return;
    }
    measure(start, middle, left, depth + 1);
    measure(middle, end, right, depth + 1);
}

double CurveLength::lengthTo(double t) const {
    if (marks_.empty()) return 0.0;
    t = agClampParameter(t, marks_.front().t, marks_.back().t);
    const auto after = std::ranges::upper_bound(marks_, t, {}, &Mark::t);
    if (after == marks_.end()) return length();
    const Mark& before = *(after - 1);
    return std::min(before.s + stretch(before.t, t), after->s);
}

double CurveLength::parameterAt(double s) const {
    if (marks_.empty()) return 0.0;
    if (!(s > 0.0)) return marks_.front().t;
    const auto after = std::ranges::lower_bound(marks_, s, {}, &Mark::s);
    if (after == marks_.end()) return marks_.back().t;
    const Mark& before = *(after - 1);
    // Newton's steps, kept within what is known to hold the place.
    Speed speed(view_);
    double low = before.t, high = after->t;
    double t = low + (high - low) * ((s - before.s) / (after->s - before.s));
    for (int step = 0; step < mostSteps; ++step) {
        const double off = before.s + stretch(before.t, t) - s;
        if (std::abs(off) <= tolerance_) break;
        (off > 0.0 ? high : low) = t;
        const double next = t - off / speed(t);
        t = next > low && next < high ? next : low + (high - low) * 0.5;
        if (!(low < t && t < high)) break;
    }
    return t;
}

}  // namespace brushwork::znAG
