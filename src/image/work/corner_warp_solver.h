// CornerWarpSolver: the inverse of the bilinear map of a quad.
#pragma once

#include "image/work/quad_solver.h"

namespace brushwork {

// The bilinear map of a quad is origin + u * edgeU + v * edgeV + u * v * twist. Its inverse is a
// quadratic in u and one in v; all that doesn't depend on the point stands here. The vectors from
// edgeU on are negated for a quad that runs clockwise, so that the wanted root always has the plus
// sign.
struct CornerWarpForm {
    QuadPoint origin;       // 1st corner
    QuadPoint edgeU;        // from the 1st to the 2nd
    QuadPoint edgeV;        // from the 1st to the 4th
    QuadPoint twist;        // 1st - 2nd + 3rd - 4th
    float area = 0.0f;      // cross product of the edges
    float leadingU = 0.0f;  // twice the quadratics' leading coefficients
    float leadingV = 0.0f;
    bool linearU = false;  // the leading coefficient is next to nothing: no root to draw
    bool linearV = false;
};

// Straight lines of the source along its edges stay straight and evenly divided. u runs from the
// 1st corner to the 2nd, v from the 1st to the 4th. Both orientations are taken; of a concave or
// crossed quad only the part that runs the way of the larger area is found. All in float.
class CornerWarpSolver final : public QuadSolver {
  public:
    CornerWarpSolver(const QuadCorners& corners, float sourceWidth, float sourceHeight);
    bool solve(float& x, float& y) const override;

    [[nodiscard]] const CornerWarpForm& form() const { return form_; }

  private:
    QuadCorners ring_;  // 1st, 4th, 3rd, 2nd corner
    CornerWarpForm form_;
};

}  // namespace brushwork
