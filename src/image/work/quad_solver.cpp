#include "image/work/quad_solver.h"

namespace brushwork {

QuadSolver::QuadSolver(const QuadCorners& corners, float sourceWidth, float sourceHeight)
    : corners_(corners),
      sourceWidth_(sourceWidth),
      sourceHeight_(sourceHeight),
      scaleX_(static_cast<double>(sourceWidth)),
      scaleY_(static_cast<double>(sourceHeight)) {}

QuadSolver::~QuadSolver() = default;

}  // namespace brushwork
