// znAG::agCompactSplineEval: the scratch state of evaluating a compact spline.
//
//     agCompactSplineEval eval;                  // one for many points: nearby ones are found fast
//     eval.evaluate(spline.view(), t, point);
//
// Each thread needs an evaluator of its own; the spline is only read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork::znAG {

// The arrays of a compact spline, borrowed. For n spans and degree m: knots -m to n + m, where the
// domain runs from knot 0 to knot n, and n + m points of `stride` doubles, homogeneous if rational.
struct AgCompactView {
    std::int32_t spans = 0;  // 0 for a spline without contents
    std::int32_t degree = 0;
    std::int32_t dim = 0;
    std::int32_t stride = 0;
    bool rational = false;
    const double* knots = nullptr;  // knot 0
    const double* points = nullptr;

    [[nodiscard]] double start() const { return knots[0]; }
    [[nodiscard]] double end() const { return knots[spans]; }
};

// The span of some length that holds t, the right one where t is a knot, the last one at the end of
// the domain. The search begins at `hint`, any number. The view isn't empty.
[[nodiscard]] std::int32_t agFindSpan(const AgCompactView& view, double t, std::int32_t hint);

class agCompactSplineEval {
  public:
    agCompactSplineEval() = default;
    // Begins where another evaluation ended, with its work array.
    explicit agCompactSplineEval(std::int32_t spanHint, std::vector<double> work = {})
        : spanHint_(spanHint), work_(std::move(work)) {}

    // The point at t, clamped to the domain, and the derivatives where they aren't null: `dim`
    // doubles each. At a knot the derivatives are those of the span right of it, at the end of the
    // domain those of the last span. False, and nothing written, for an empty view.
    bool evaluate(const AgCompactView& view, double t, double* point, double* first = nullptr,
                  double* second = nullptr);

    [[nodiscard]] std::int32_t spanHint() const { return spanHint_; }
    // Gives the work array away, to be used by the next evaluation.
    [[nodiscard]] std::vector<double> takeWork() { return std::move(work_); }

  private:
    // `count` doubles: of `few` if that suffices, else of the work array, which never shrinks.
    static constexpr std::size_t fewDoubles = 12;
    double* scratch(std::size_t count, double* few);

    std::int32_t spanHint_ = 0;
    std::vector<double> work_;
};

}  // namespace brushwork::znAG
