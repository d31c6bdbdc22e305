#include "geometry/ag_compact_surface_eval.h"

#include <algorithm>

#include "geometry/ag_compact_spline_eval.h"
#include "geometry/ag_de_boor.h"
#include "geometry/ag_node.h"

namespace brushwork::znAG {
namespace {

// A direction as a curve, for finding spans and clamping.
std::int32_t spanOf(const AgCompactDirection& direction, double& t, std::int32_t hint) {
    const AgCompactView curve{direction.spans, direction.degree, 0,      0,
                              false,           direction.knots,  nullptr};
    t = agClampParameter(t, curve.start(), curve.end());
    return agFindSpan(curve, t, hint);
}

// From homogeneous coordinates to points, in place, by the quotient rule; the weight is behind the
// coordinates. Entries in order: value, u, v, uu, uv, vv.
void project(std::size_t dim, const std::array<double*, 6>& s) {
    const double w = s[0][dim];
    const auto weight = [&](std::size_t k) { return s[k][dim]; };
    for (std::size_t c = 0; c < dim; ++c) {
        s[0][c] /= w;
        s[1][c] = (s[1][c] - weight(1) * s[0][c]) / w;
        s[2][c] = (s[2][c] - weight(2) * s[0][c]) / w;
        s[3][c] = (s[3][c] - 2.0 * weight(1) * s[1][c] - weight(3) * s[0][c]) / w;
        s[4][c] = (s[4][c] - weight(1) * s[2][c] - weight(2) * s[1][c] - weight(4) * s[0][c]) / w;
        s[5][c] = (s[5][c] - 2.0 * weight(2) * s[2][c] - weight(5) * s[0][c]) / w;
    }
}

}  // namespace

bool agCompactSurfaceEval::evaluate(const AgCompactSurfaceView& view, double u, double v,
                                    double* point, const AgSurfaceDerivatives& derivatives) {
    if (view.u.spans < 1 || view.v.spans < 1) return false;
    hints_ = {spanOf(view.u, u, hints_[0]), spanOf(view.v, v, hints_[1])};
    const std::size_t stride = static_cast<std::size_t>(view.stride);
    const std::size_t dim = static_cast<std::size_t>(view.dim);
    const std::size_t mu = static_cast<std::size_t>(view.u.degree);
    const std::size_t mv = static_cast<std::size_t>(view.v.degree);
    const std::size_t row = (mu + 1) * stride;
    const std::size_t work = agDeBoorWork(std::max(mu, mv), stride);
    if (work_.size() < 3 * row + 6 * stride + work) work_.resize(3 * row + 6 * stride + work);
    // Along v at every row of points: values and derivatives, each the points of a curve along u.
    double* const rows = work_.data();
    std::array<double*, 6> s;
    for (std::size_t k = 0; k < s.size(); ++k) s[k] = rows + 3 * row + k * stride;
    double* const scratch = s[5] + stride;
    const bool derived = derivatives.any();
    const bool twice = derivatives.anySecond();
    const std::size_t rowPoints = static_cast<std::size_t>(view.v.spans) + mv;
    const double* const knotsV = view.v.knots + (hints_[1] - view.v.degree + 1);
    for (std::size_t i = 0; i <= mu; ++i) {
        const std::size_t at = (static_cast<std::size_t>(hints_[0]) + i) * rowPoints +
                               static_cast<std::size_t>(hints_[1]);
        agDeBoor({mv, stride, knotsV, view.points + at * stride}, v, scratch, rows + i * stride,
                 derived ? rows + row + i * stride : nullptr,
                 twice ? rows + 2 * row + i * stride : nullptr);
    }
    const double* const knotsU = view.u.knots + (hints_[0] - view.u.degree + 1);
    agDeBoor({mu, stride, knotsU, rows}, u, scratch, s[0], derived ? s[1] : nullptr,
             twice ? s[3] : nullptr);
    if (derived)
        agDeBoor({mu, stride, knotsU, rows + row}, u, scratch, s[2], twice ? s[4] : nullptr,
                 nullptr);
    if (twice) agDeBoor({mu, stride, knotsU, rows + 2 * row}, u, scratch, s[5], nullptr, nullptr);
    if (view.rational) {
        for (std::size_t k = derived ? twice ? 6 : 3 : 1; k < s.size(); ++k)
            std::fill_n(s[k], stride, 0.0);
        project(dim, s);
    }
    double* const wanted[6] = {point,          derivatives.u,  derivatives.v,
                               derivatives.uu, derivatives.uv, derivatives.vv};
    for (std::size_t k = 0; k < s.size(); ++k)
        if (wanted[k]) std::copy_n(s[k], dim, wanted[k]);
    return true;
}

}  // namespace brushwork::znAG
