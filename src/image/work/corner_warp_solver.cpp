#include "image/work/corner_warp_solver.h"

#include <cmath>

namespace brushwork {
namespace {

QuadPoint minus(QuadPoint a, QuadPoint b) {
    return {a.x - b.x, a.y - b.y};
}
float cross(QuadPoint a, QuadPoint b) {
    return a.x * b.y - a.y * b.x;
}
bool nearZero(float value) {
    return std::abs(value) < 0.0001f;
}

CornerWarpForm formOf(const QuadCorners& ring) {
    const auto& [p0, p1, p2, p3] = ring;
    CornerWarpForm form;
    form.origin = p0;
    form.edgeU = minus(p3, p0);
    form.edgeV = minus(p1, p0);
    form.area = cross(form.edgeU, form.edgeV);
    form.leadingU = 2.0f * cross(form.edgeU, minus(p2, p1));
    form.leadingV = 2.0f * cross(minus(p2, p3), form.edgeV);
    // The Jacobian in the middle of the quad is its signed area.
    if (form.area + 0.25f * (form.leadingU + form.leadingV) < 0.0f) {
        for (QuadPoint* edge : {&form.edgeU, &form.edgeV}) *edge = {-edge->x, -edge->y};
        form.twist = minus(minus(p1, p0), minus(p2, p3));
        form.area = -form.area;
        form.leadingU = -form.leadingU;
        form.leadingV = -form.leadingV;
    } else {
        form.twist = minus(minus(p2, p3), minus(p1, p0));
    }
    form.linearU = nearZero(form.leadingU);
    form.linearV = nearZero(form.leadingV);
    if (form.linearU && form.linearV) form.twist = {};  // a parallelogram
    return form;
}

// The root (sqrt(D) + b) / leading of leading / 2 * t^2 - b * t - c = 0. Where b is negative, as
// nearly everywhere inside a quad, that difference would lose all digits of a quad that is almost a
// parallelogram; there the same root is taken in its other form.
bool plusRoot(float b, float c, float leading, bool linear, float& root) {
    if (linear) {
        if (b == 0.0f) return false;
        root = c / -b;
        return true;
    }
    const float discriminant = b * b + leading * (c + c);
    if (!(discriminant >= 0.0f)) return false;
    const float width = std::sqrt(discriminant);
    root = b <= 0.0f ? (c + c) / (width - b) : (width + b) / leading;
    return true;
}

}  // namespace

CornerWarpSolver::CornerWarpSolver(const QuadCorners& corners, float sourceWidth,
                                   float sourceHeight)
    : QuadSolver(corners, sourceWidth, sourceHeight),
      ring_{corners[0], corners[3], corners[2], corners[1]},
      form_(formOf(ring_)) {}

bool CornerWarpSolver::solve(float& x, float& y) const {
    const QuadPoint here = minus({x, y}, form_.origin);
    const float bend = cross(here, form_.twist);
    float u = 0.0f;
    float v = 0.0f;
    if (!plusRoot(bend - form_.area, cross(here, form_.edgeV), form_.leadingU, form_.linearU, u) ||
        !plusRoot(-bend - form_.area, cross(form_.edgeU, here), form_.leadingV, form_.linearV, v))
        return false;
    if (!isFraction(u) || !isFraction(v)) return false;
    x = static_cast<float>(static_cast<double>(u) * scaleX());
    y = static_cast<float>(static_cast<double>(v) * scaleY());
    return true;
}

}  // namespace brushwork
