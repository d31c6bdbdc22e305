#include "geometry/curve_nearest.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brushwork::znAG {
namespace {

constexpr double distancePart = 1e-10;
// Cuts of one search by the degree. Searches on curves that people draw take some tens of them.
constexpr std::size_t mostCuts = 200000;
constexpr int newtonSteps = 30;

class Search {
  public:
    Search(const agCompactSpline& spline, CurvePoint point)
        : view_(spline.view()), point_(point), out_(3 * static_cast<std::size_t>(view_.dim)) {}

    NearestPlace run(std::vector<BezierPiece> pieces) {
        double size = 0.0;
        for (const BezierPiece& piece : pieces)
            for (const WeightedPoint& p : piece.points) {
                const double far = distanceTo(p.place());
                if (std::isfinite(far)) size = std::max(size, far);
            }
        tolerance_ = size * distancePart;
        for (const BezierPiece& piece : pieces) descend(piece.start, piece);
        for (const BezierPiece& piece : pieces) descend(piece.middle(), piece);
        tryEnd(pieces.back().end);
        std::reverse(pieces.begin(), pieces.end());
        std::size_t cuts = mostCuts / pieces.front().points.size();
        while (!pieces.empty() && cuts > 0 && best_.distance > tolerance_) {
            const BezierPiece piece = std::move(pieces.back());
            pieces.pop_back();
            if (!mayBeNearer(piece) || !piece.canSplit()) continue;
            --cuts;
            descend(piece.middle(), piece);
            auto [before, behind] = piece.split();
            pieces.push_back(std::move(behind));
            pieces.push_back(std::move(before));
        }
        return best_;
    }

  private:
    [[nodiscard]] double distanceTo(CurvePoint p) const {
        return std::hypot(p.x - point_.x, p.y - point_.y);
    }

    // With N the square of (curve - point) times its weight and W the weight, a piece is nearer
    // than b somewhere only if N - b^2 W^2 is below 0 there; and that is a polynomial whose
    // Bernstein coefficients bound it from below.
    [[nodiscard]] bool mayBeNearer(const BezierPiece& piece) {
        const double wanted = std::max(0.0, best_.distance - tolerance_);
        const std::size_t m = piece.points.size() - 1;
        moved_.clear();
        for (const WeightedPoint& p : piece.points)
            moved_.push_back({p.x - point_.x * p.w, p.y - point_.y * p.w, p.w * wanted});
        fillBinomials(m);
        for (std::size_t k = 0; k <= 2 * m; ++k) {
            double sum = 0.0;
            for (std::size_t i = k > m ? k - m : 0; i <= std::min(k, m); ++i) {
                const WeightedPoint& a = moved_[i];
                const WeightedPoint& b = moved_[k - i];
                sum += binomials_[i] * binomials_[k - i] * (a.x * b.x + a.y * b.y - a.w * b.w);
            }
            if (!(sum >= 0.0)) return true;
        }
        return false;
    }

    void fillBinomials(std::size_t m) {
        if (binomials_.size() == m + 1) return;
        binomials_.assign(m + 1, 1.0);
        for (std::size_t i = 1; i <= m; ++i)
            binomials_[i] =
                binomials_[i - 1] * static_cast<double>(m - i + 1) / static_cast<double>(i);
    }

    void note(double t) {
        const CurvePoint place{out_[0], out_[1]};
        const double distance = distanceTo(place);
        if (distance < best_.distance) best_ = {t, place, distance};
    }

    void tryEnd(double t) {
        eval_.evaluate(view_, t, out_.data());
        note(t);
    }

    // From t down the slope of the distance, within the piece.
    void descend(double t, const BezierPiece& piece) {
        const std::size_t dim = static_cast<std::size_t>(view_.dim);
        double* const first = out_.data() + dim;
        double* const second = first + dim;
        for (int step = 0; step < newtonSteps; ++step) {
            eval_.evaluate(view_, t, out_.data(), first, second);
            note(t);
            const double dx = out_[0] - point_.x, dy = out_[1] - point_.y;
            const double slope = dx * first[0] + dy * first[1];
            const double speed = first[0] * first[0] + first[1] * first[1];
            const double bend = speed + dx * second[0] + dy * second[1];
            // Where the distance bends downward, the step of a straight line is the safer one.
            const double next =
                std::clamp(t - slope / (bend > 0.0 ? bend : speed), piece.start, piece.end);
            if (!(std::abs(next - t) > 1e-15 * (piece.end - piece.start))) return;
            t = next;
        }
    }

    AgCompactView view_;
    CurvePoint point_;
    double tolerance_ = 0.0;
    NearestPlace best_{0.0, {}, std::numeric_limits<double>::infinity()};
    agCompactSplineEval eval_;
    std::vector<double> out_;
    std::vector<WeightedPoint> moved_;
    std::vector<double> binomials_;
};

}  // namespace

std::optional<NearestPlace> nearestOnCurve(const agCompactSpline& spline, CurvePoint point) {
    std::vector<BezierPiece> pieces = bezierPieces(spline);
    if (pieces.empty() || !std::isfinite(point.x) || !std::isfinite(point.y)) return std::nullopt;
    return Search(spline, point).run(std::move(pieces));
}

}  // namespace brushwork::znAG
