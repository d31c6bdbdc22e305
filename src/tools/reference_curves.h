// ReferenceCurve: a plane curve of the host's, and the curve roles of the host table on it.
//
//     auto arc = ReferenceCurve::smooth(places, ReferenceCurve::Ends::Open);
//     parameters.guide = makeRef<GuideCurve>(arc->copy().release());
//
// A HostCurve is a pointer to one. Whoever hands a curve over gives it back by releaseCurve.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "brushwork/host_call_table.h"
#include "brushwork/ref.h"
#include "geometry/ag_compact_spline.h"
#include "geometry/bezier_piece.h"
#include "geometry/curve_length.h"

namespace brushwork::tools {

class ReferenceCurve {
  public:
    using Place = znAG::CurvePoint;
    enum class Ends { Open, Joined };

    // Straight from place to place. Null for fewer than two places; so below.
    [[nodiscard]] static std::unique_ptr<ReferenceCurve> straight(std::span<const Place> places,
                                                                  Ends ends);
    // Through all places, without corners.
    [[nodiscard]] static std::unique_ptr<ReferenceCurve> smooth(std::span<const Place> places,
                                                                Ends ends);
    // Cubic pieces: a place, two handles, the next place, and so on: 3 n + 1 of them.
    [[nodiscard]] static std::unique_ptr<ReferenceCurve> bezier(std::span<const Place> points);
    // A closed one, exactly round. Null for a radius that isn't above 0.
    [[nodiscard]] static std::unique_ptr<ReferenceCurve> ellipse(Place center, double radiusX,
                                                                 double radiusY);

    explicit ReferenceCurve(Ref<znAG::agCompactSpline> spline) : spline_(std::move(spline)) {}
    ReferenceCurve(const ReferenceCurve&) = delete;
    ReferenceCurve& operator=(const ReferenceCurve&) = delete;

    [[nodiscard]] std::unique_ptr<ReferenceCurve> copy() const;
    [[nodiscard]] const znAG::agCompactSpline& spline() const { return *spline_; }
    // Measured when first asked for.
    [[nodiscard]] const znAG::CurveLength& arc();
    // (m[0] x + m[1] y + m[2], m[3] x + m[4] y + m[5])
    void map(const double* m);

  private:
    Ref<znAG::agCompactSpline> spline_;
    std::unique_ptr<znAG::CurveLength> arc_;
};

// Fills the curve roles of a table.
void serveCurves(HostCallTable& table);

}  // namespace brushwork::tools
