#include "image/work/perspective_warp_solver.h"

#include <cmath>

namespace brushwork {
namespace {

bool isUsable(double divisor) {
    return std::isfinite(divisor) && divisor != 0.0;
}

}  // namespace

std::optional<ProjectiveMap> squareToQuad(const QuadCorners& corners) {
    double x[4];
    double y[4];
    for (std::size_t k = 0; k < 4; ++k) {
        x[k] = static_cast<double>(corners[k].x);
        y[k] = static_cast<double>(corners[k].y);
    }
    const double sumX = x[0] - x[1] + x[2] - x[3];
    const double sumY = y[0] - y[1] + y[2] - y[3];
    ProjectiveMap map;
    if (sumX != 0.0 || sumY != 0.0) {
        const double dx1 = x[1] - x[2];
        const double dy1 = y[1] - y[2];
        const double dx2 = x[3] - x[2];
        const double dy2 = y[3] - y[2];
        const double divisor = dx1 * dy2 - dx2 * dy1;
        if (!isUsable(divisor)) return std::nullopt;
        map.c = (sumX * dy2 - dx2 * sumY) / divisor;
        map.f = (dx1 * sumY - sumX * dy1) / divisor;
    }
    map.a = x[1] - x[0] + map.c * x[1];
    map.b = y[1] - y[0] + map.c * y[1];
    map.d = x[3] - x[0] + map.f * x[3];
    map.e = y[3] - y[0] + map.f * y[3];
    map.g = x[0];
    map.h = y[0];
    return map;
}

std::optional<ProjectiveMap> quadToSquare(const QuadCorners& corners) {
    const std::optional<ProjectiveMap> forward = squareToQuad(corners);
    if (!forward) return std::nullopt;
    const ProjectiveMap& m = *forward;
    ProjectiveMap back;
    back.a = m.e * m.i - m.f * m.h;
    back.b = m.c * m.h - m.b * m.i;
    back.c = m.b * m.f - m.c * m.e;
    back.d = m.f * m.g - m.d * m.i;
    back.e = m.a * m.i - m.c * m.g;
    back.f = m.c * m.d - m.a * m.f;
    back.g = m.d * m.h - m.e * m.g;
    back.h = m.b * m.g - m.a * m.h;
    back.i = m.a * m.e - m.b * m.d;
    const double determinant = m.c * back.g + m.f * back.h + m.i * back.i;
    if (!isUsable(determinant)) return std::nullopt;
    for (double* entry :
         {&back.a, &back.b, &back.c, &back.d, &back.e, &back.f, &back.g, &back.h, &back.i})
        *entry /= determinant;
    return back;
}

PerspectiveWarpSolver::PerspectiveWarpSolver(const QuadCorners& corners, float sourceWidth,
                                             float sourceHeight, const ProjectiveMap& map)
    : QuadSolver(corners, sourceWidth, sourceHeight), map_(map) {}

bool PerspectiveWarpSolver::solve(float& x, float& y) const {
    const double px = static_cast<double>(x);
    const double py = static_cast<double>(y);
    double w = px * map_.c + py * map_.f + map_.i;
    if (std::abs(w) < leastDenominator) w = w < 0.0 ? -leastDenominator : leastDenominator;
    const double u = (map_.a * px + map_.d * py + map_.g) / w;
    const double v = (map_.b * px + map_.e * py + map_.h) / w;
    if (!isFraction(u) || !isFraction(v)) return false;
    x = static_cast<float>(u * scaleX());
    y = static_cast<float>(v * scaleY());
    return true;
}

}  // namespace brushwork
