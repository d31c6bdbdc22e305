// znAG::agCompactSurfaceEval: the scratch state of evaluating a compact surface.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork::znAG {

// One of a surface's two directions: sizes, and where its knots are.
struct AgCompactDirection {
    std::int32_t spans = 0;
    std::int32_t degree = 0;
    const double* knots = nullptr;  // knot 0; -degree to spans + degree may be read
};

// The arrays of a compact surface, borrowed. Point (i, j), i along u, j along v, is number
// i * (v.spans + v.degree) + j, of `stride` doubles, homogeneous if rational.
struct AgCompactSurfaceView {
    AgCompactDirection u;
    AgCompactDirection v;
    std::int32_t dim = 0;
    std::int32_t stride = 0;
    bool rational = false;
    const double* points = nullptr;
};

// What an evaluation writes, `dim` doubles each; what is null isn't computed.
struct AgSurfaceDerivatives {
    double* u = nullptr;
    double* v = nullptr;
    double* uu = nullptr;
    double* uv = nullptr;
    double* vv = nullptr;

    [[nodiscard]] bool any() const { return u || v || uu || uv || vv; }
    [[nodiscard]] bool anySecond() const { return uu || uv || vv; }
};

class agCompactSurfaceEval {
  public:
    using Hints = std::array<std::int32_t, 2>;  // the spans found last, along u and v

    agCompactSurfaceEval() = default;
    explicit agCompactSurfaceEval(Hints hints, std::vector<double> work = {})
        : hints_(hints), work_(std::move(work)) {}

    // Both parameters are clamped to the domain; at a knot the derivatives are those of the span
    // right of it. False, and nothing written, for an empty view.
    bool evaluate(const AgCompactSurfaceView& view, double u, double v, double* point,
                  const AgSurfaceDerivatives& derivatives = {});

    [[nodiscard]] Hints hints() const { return hints_; }
    [[nodiscard]] std::vector<double> takeWork() { return std::move(work_); }

  private:
    Hints hints_{};
    std::vector<double> work_;  // never shrinks
};

}  // namespace brushwork::znAG
