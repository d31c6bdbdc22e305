// znAG::agCompactSurface: a B-spline surface in flat arrays, for evaluation.
//
//     auto surface = makeRef<agCompactSurface>(AgSurfaceSizes{4, 3}, AgSurfaceSizes{2, 3}, 3,
//     false);
//     ... setKnot, point ...
//     surface->evaluate(u, v, point);
//
// As for curves, evaluating is a write: one surface isn't evaluated by two threads at once, unless
// each has an agCompactSurfaceEval of its own over view().
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "brushwork/reference_count.h"
#include "geometry/ag_compact_surface_eval.h"

namespace brushwork::znAG {

// One direction's sizes.
struct AgSurfaceSizes {
    std::int32_t spans = 0;
    std::int32_t degree = 0;
    std::int32_t form = 0;  // see AG_FORM
};

enum class AgDirection { U = 0, V = 1 };

class agCompactSurface final : public zn::ReferenceCount {
  public:
    // Without contents.
    agCompactSurface() = default;
    // Knots and points are all 0. Numbers that rebuild refuses leave it without contents.
    agCompactSurface(const AgSurfaceSizes& u, const AgSurfaceSizes& v, std::int32_t dim,
                     bool rational);
    // A deep copy.
    explicit agCompactSurface(const agCompactSurface& other);
    agCompactSurface& operator=(const agCompactSurface&) = delete;

    // Gives the surface these sizes. If only forms change, the arrays stay with all they hold; else
    // they are made anew, all 0. False, and no contents, for a number below 1, for sizes that don't
    // go together in memory and for a form outside of -2 to 2.
    bool rebuild(const AgSurfaceSizes& u, const AgSurfaceSizes& v, std::int32_t dim, bool rational);
    void clear();

    // Writes dim() doubles to the point and to the derivatives that aren't null. Parameters are
    // clamped to the domain. False, and nothing written, without contents or for a short span.
    bool evaluate(double u, double v, std::span<double> point,
                  const AgSurfaceDerivatives& derivatives = {});

    // All 0 without contents.
    [[nodiscard]] AgSurfaceSizes sizes(AgDirection direction) const;
    [[nodiscard]] std::int32_t dim() const { return dim_; }
    [[nodiscard]] std::int32_t stride() const { return stride_; }  // dim, plus 1 if rational
    [[nodiscard]] bool isRational() const { return rational_; }

    // Knots -degree to spans + degree of a direction, ascending.
    [[nodiscard]] double knot(AgDirection direction, std::int32_t index) const;
    void setKnot(AgDirection direction, std::int32_t index, double value);
    // Point (i, j), i below spans + degree along u, j along v; stride() doubles, homogeneous if
    // rational.
    [[nodiscard]] std::span<double> point(std::int32_t i, std::int32_t j);

    // The corners of the box around all control points, of dim() doubles, as of updateBounds.
    [[nodiscard]] std::span<const double> low() const;
    [[nodiscard]] std::span<const double> high() const;
    void updateBounds();

    [[nodiscard]] AgCompactSurfaceView view() const;

  protected:
    ~agCompactSurface() override = default;

  private:
    struct Direction {
        AgSurfaceSizes sizes;
        std::int32_t spanHint = 0;
        std::int32_t knotCount = 0;
        std::int32_t pointCount = 0;  // across the direction
        std::int32_t firstKnot = 0;   // -degree
        double* knots = nullptr;      // knot 0
    };
    bool allocate(const AgSurfaceSizes& u, const AgSurfaceSizes& v, std::int32_t dim,
                  bool rational);
    void pointIntoBlock();
    [[nodiscard]] Direction& along(AgDirection direction) const {
        return directions_[static_cast<std::size_t>(direction)];
    }

    std::unique_ptr<Direction[]> directions_;  // u and v; null without contents
    std::int32_t dim_ = 0;
    std::int32_t stride_ = 0;
    bool rational_ = false;
    double* low_ = nullptr;
    double* high_ = nullptr;
    std::size_t blockSize_ = 0;
    std::unique_ptr<double[]> block_;  // points, low corner, high corner, knots of u, knots of v
    double* points_ = nullptr;
    std::vector<double> work_;  // of evaluations
};

}  // namespace brushwork::znAG
