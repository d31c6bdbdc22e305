#include "image/work/solver_rows.h"

#include "image/work/sampling_kernels.h"

namespace brushwork {

void solveRowScalar(const QuadSolver& solver, const RowRequest& request, SolvedRow& row) {
    noteKernelForm(VectorLevel::Scalar);
    row.mapped = 0;
    for (int n = 0; n < request.count; ++n) {
        float x = static_cast<float>(request.x + n) + 0.5f;
        float y = static_cast<float>(request.y) + 0.5f;
        if (!solver.solve(x, y)) continue;
        row.x[n] = toFixed(x - request.shift);
        row.y[n] = toFixed(y - request.shift);
        row.mapped |= std::uint64_t{1} << n;
    }
}

RowSolver::RowSolver(const QuadSolver& solver, VectorLevel level)
    : solver_(solver),
      perspective_(dynamic_cast<const PerspectiveWarpSolver*>(&solver)),
      corner_(dynamic_cast<const CornerWarpSolver*>(&solver)),
      level_(level) {}

void RowSolver::solve(const RowRequest& request, SolvedRow& row) const {
    const float width = solver_.sourceWidth();
    const float height = solver_.sourceHeight();
    const bool wide = level_ == VectorLevel::Avx2;
    if (level_ == VectorLevel::Scalar || (!perspective_ && !corner_)) {
        solveRowScalar(solver_, request, row);
    } else if (perspective_) {
        const PerspectiveRowJob job{perspective_->map(), width, height};
        wide ? solveRowAvx2(job, request, row) : solveRowSse2(job, request, row);
    } else {
        const CornerRowJob job{corner_->form(), width, height};
        wide ? solveRowAvx2(job, request, row) : solveRowSse2(job, request, row);
    }
}

}  // namespace brushwork
