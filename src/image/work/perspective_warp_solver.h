// PerspectiveWarpSolver: the inverse of a projective map, and how four corners make one.
#pragma once

#include <optional>

#include "image/work/quad_solver.h"

namespace brushwork {

// A projective map of row vectors: (x, y, 1) times the rows (a b c), (d e f), (g h i).
struct ProjectiveMap {
    double a = 1.0, b = 0.0, c = 0.0;
    double d = 0.0, e = 1.0, f = 0.0;
    double g = 0.0, h = 0.0, i = 1.0;
};

// The map that takes the unit square's corners (0, 0), (1, 0), (1, 1), (0, 1) to the given ones, by
// Paul Heckbert, "Fundamentals of Texture Mapping and Image Warping" (1989), section 2.2.3. Nothing
// for corners of which three lie on a line in a way that no such map does it.
[[nodiscard]] std::optional<ProjectiveMap> squareToQuad(const QuadCorners& corners);
// The map back, of the scale at which the denominator is 1 at the first corner. For parallelograms
// its last column is exactly (0, 0, 1). Nothing for a quad without an area.
[[nodiscard]] std::optional<ProjectiveMap> quadToSquare(const QuadCorners& corners);

// Straight lines stay straight. All in double but for the points themselves.
class PerspectiveWarpSolver final : public QuadSolver {
  public:
    // `map` leads from the target to the unit square; usually quadToSquare(corners).
    PerspectiveWarpSolver(const QuadCorners& corners, float sourceWidth, float sourceHeight,
                          const ProjectiveMap& map);
    bool solve(float& x, float& y) const override;

    [[nodiscard]] const ProjectiveMap& map() const { return map_; }

    // Denominators next to the horizon are pushed away from zero; 0 counts as positive.
    static constexpr double leastDenominator = 0.0001;

  private:
    ProjectiveMap map_;
};

}  // namespace brushwork
