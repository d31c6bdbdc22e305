// znAG::agCompactSpline: a B-spline curve in flat arrays, the form for evaluation.
//
//     auto spline = makeRef<agCompactSpline>(*nodes);   // an AG_SPLINE
//     double point[2], tangent[2];
//     spline->evaluate(t, point, tangent);
//
// Evaluating is a write to the spline: it keeps the span it found, and its work space, for the next
// time. So one spline isn't evaluated by two threads at once, unless each has an
// agCompactSplineEval of its own over view().
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "brushwork/reference_count.h"
#include "geometry/ag_compact_spline_eval.h"
#include "geometry/ag_spline.h"

namespace brushwork::znAG {

class agCompactSpline final : public zn::ReferenceCount {
  public:
    // Without contents: spans() is 0 and evaluation fails.
    agCompactSpline() = default;
    // Knots and points are all 0, for the caller to fill in. Numbers that rebuild refuses leave it
    // without contents.
    agCompactSpline(std::int32_t spans, std::int32_t degree, std::int32_t form, std::int32_t dim,
                    bool rational);
    // A deep copy.
    explicit agCompactSpline(const agCompactSpline& other);
    // See convert.
    explicit agCompactSpline(const AG_SPLINE& spline);
    agCompactSpline& operator=(const agCompactSpline&) = delete;

    // Gives the spline these sizes. If only `form` changes, the arrays stay with all they hold;
    // else they are made anew, all 0. False, and no contents, for a number below 1, for sizes that
    // don't go together in memory and for a form outside of -2 to 2.
    bool rebuild(std::int32_t spans, std::int32_t degree, std::int32_t form, std::int32_t dim,
                 bool rational);
    void clear();
    // Replaces the contents by those of a node list; null clears them. False, and no contents, for
    // a spline that can't be evaluated (messages 1 to 26 of its check).
    bool convert(const AG_SPLINE* spline);
    // The way back, to the kind of weights and the type that the contents came with, else to
    // homogeneous weights and no special type. Null for contents that break a rule of AG_SPLINE.
    [[nodiscard]] AgSplinePtr toNodes() const;

    // Writes dim() doubles each. t is clamped to the domain. At a knot the derivatives are those of
    // the span right of it. False, and nothing written, without contents or for a short `span`.
    bool evaluate(double t, std::span<double> point);
    bool evaluate(double t, std::span<double> point, std::span<double> first);
    bool evaluate(double t, std::span<double> point, std::span<double> first,
                  std::span<double> second);

    [[nodiscard]] std::int32_t spans() const { return spans_; }
    [[nodiscard]] std::int32_t degree() const { return degree_; }
    [[nodiscard]] std::int32_t form() const { return form_; }
    [[nodiscard]] std::int32_t dim() const { return dim_; }
    [[nodiscard]] std::int32_t stride() const { return stride_; }  // dim, plus 1 if rational
    [[nodiscard]] bool isRational() const { return rational_; }
    [[nodiscard]] std::int32_t spanHint() const { return spanHint_; }
    [[nodiscard]] double start() const { return spans_ > 0 ? knots_[0] : 0.0; }
    [[nodiscard]] double end() const { return spans_ > 0 ? knots_[spans_] : 0.0; }

    // Knots -degree() to spans() + degree(), ascending; the domain is from knot 0 to knot spans().
    // The outermost two bear on no point of the domain.
    [[nodiscard]] std::int32_t firstKnot() const { return firstKnot_; }
    [[nodiscard]] std::int32_t knotCount() const { return knotCount_; }
    [[nodiscard]] double knot(std::int32_t index) const { return knots_[index]; }
    void setKnot(std::int32_t index, double value) { knots_[index] = value; }
    // From knot firstKnot() on.
    [[nodiscard]] std::span<const double> knots() const;

    // spans() + degree() points of stride() doubles, homogeneous if rational.
    [[nodiscard]] std::int32_t pointCount() const { return pointCount_; }
    [[nodiscard]] std::span<double> point(std::int32_t index);
    [[nodiscard]] std::span<const double> points() const;

    // The corners of the box around all control points, which holds the curve where all weights are
    // positive; of dim() doubles. convert sets it, updateBounds after a change of points.
    [[nodiscard]] std::span<const double> low() const;
    [[nodiscard]] std::span<const double> high() const;
    void updateBounds();

    // For evaluators and for whoever reads without writing; valid until the next rebuild.
    [[nodiscard]] AgCompactView view() const;

  protected:
    ~agCompactSpline() override = default;

  private:
    bool evaluateInto(double t, std::span<double> point, double* first, double* second);
    bool allocate(std::int32_t spans, std::int32_t degree, std::int32_t dim, bool rational);
    void pointIntoBlock();
    [[nodiscard]] std::size_t blockSize() const;

    std::int32_t spans_ = 0;
    std::int32_t degree_ = 0;
    std::int32_t form_ = AG_OPEN;
    std::int32_t dim_ = 0;
    std::int32_t stride_ = 0;
    bool rational_ = false;
    std::uint8_t ctype_ = AG_NOTHING_SPECIAL;
    bool plainWeights_ = false;  // came from points that weren't multiplied by their weights
    double* low_ = nullptr;
    double* high_ = nullptr;
    std::int32_t spanHint_ = 0;
    std::int32_t knotCount_ = 0;
    std::int32_t pointCount_ = 0;
    std::int32_t firstKnot_ = 0;       // -degree
    std::unique_ptr<double[]> block_;  // points, low corner, high corner, knots
    double* knots_ = nullptr;          // knot 0
    double* points_ = nullptr;
    std::vector<double> work_;  // of evaluations
};

}  // namespace brushwork::znAG
