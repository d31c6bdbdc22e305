// QuadSolver: where in a source picture does a point of a quadrilateral come from?
//
//     CornerWarpSolver solver(corners, width, height);
//     float x = ..., y = ...;                       // a point of the target
//     if (solver.solve(x, y)) read the source at (x, y);
//
// The source picture's own corners lie on the quad's corners in the order (0, 0), (width, 0),
// (width, height), (0, height). Points are places on the plane, not indexes of pixels: the middle
// of pixel (0, 0) is (0.5, 0.5), in the target as in the source.
//
// Solvers never change once they are built; any number of threads may share one.
#pragma once

#include <array>

namespace brushwork {

struct QuadPoint {
    float x = 0.0f, y = 0.0f;
};
using QuadCorners = std::array<QuadPoint, 4>;

class QuadSolver {
  public:
    virtual ~QuadSolver();
    // Replaces a point of the target by its place in the source, 0..width and 0..height. False, and
    // the point stays as it is, if no place of the source lies there.
    virtual bool solve(float& x, float& y) const = 0;

    QuadSolver(const QuadSolver&) = delete;
    QuadSolver& operator=(const QuadSolver&) = delete;

    [[nodiscard]] float sourceWidth() const { return sourceWidth_; }
    [[nodiscard]] float sourceHeight() const { return sourceHeight_; }

  protected:
    QuadSolver(const QuadCorners& corners, float sourceWidth, float sourceHeight);

    // Solutions are fractions of the source; these tests and factors end every solve.
    template <class Real>
    [[nodiscard]] static bool isFraction(Real value) {
        return value >= Real{0} && value <= Real{1};
    }
    [[nodiscard]] const QuadCorners& corners() const { return corners_; }
    [[nodiscard]] double scaleX() const { return scaleX_; }
    [[nodiscard]] double scaleY() const { return scaleY_; }

  private:
    QuadCorners corners_;
    float sourceWidth_, sourceHeight_;
    double scaleX_, scaleY_;  // source pixels to the unit of a solution
};

}  // namespace brushwork
