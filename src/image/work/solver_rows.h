// Rows of target pixels put through a warp solver, many at a time.
//
// What a solver's solve() answers for the middle of one pixel after the other is the definition.
// The two solvers of this system also have vector forms here, which run the same operations on
// several pixels; any other solver is asked pixel by pixel.
#pragma once

#include <cstdint>

#include "foundation/services/vector_level.h"
#include "image/work/corner_warp_solver.h"
#include "image/work/perspective_warp_solver.h"

namespace brushwork {

// At most 64 neighbouring pixels of a row.
struct SolvedRow {
    static constexpr int capacity = 64;
    alignas(32) std::int32_t x[capacity];  // 16.16 fixed point; arbitrary where nothing maps
    alignas(32) std::int32_t y[capacity];
    std::uint64_t mapped;  // bit n: pixel n has a place in the source
};

struct RowRequest {
    std::int32_t x, y;   // the first pixel
    std::int32_t count;  // 1..capacity
    float shift;         // taken off both coordinates of a place before it becomes fixed
};

class RowSolver {
  public:
    // Borrows the solver.
    explicit RowSolver(const QuadSolver& solver, VectorLevel level = vectorLevel());
    void solve(const RowRequest& request, SolvedRow& row) const;

  private:
    const QuadSolver& solver_;
    const PerspectiveWarpSolver* perspective_;  // the solver, if it is one of these
    const CornerWarpSolver* corner_;
    VectorLevel level_;
};

// The forms, over plain values.
struct PerspectiveRowJob {
    ProjectiveMap map;
    float width, height;
};
struct CornerRowJob {
    CornerWarpForm form;
    float width, height;
};
void solveRowSse2(const PerspectiveRowJob& job, const RowRequest& request, SolvedRow& row);
void solveRowAvx2(const PerspectiveRowJob& job, const RowRequest& request, SolvedRow& row);
void solveRowSse2(const CornerRowJob& job, const RowRequest& request, SolvedRow& row);
void solveRowAvx2(const CornerRowJob& job, const RowRequest& request, SolvedRow& row);
void solveRowScalar(const QuadSolver& solver, const RowRequest& request, SolvedRow& row);

}  // namespace brushwork
