// AG_CURVE: a ring of splines whose parameters run on from each to the next. An open curve is a
// ring too: its last spline's `next` is the first.
#pragma once

#include <memory>
#include <vector>

#include "geometry/ag_spline.h"

namespace brushwork {

// Borrows all it points to.
struct AG_CURVE : AG_GOB {
    std::int32_t dim = 0;
    std::int32_t nbs = 0;  // splines in the ring
    std::int32_t form = AG_OPEN;
    AG_SPLINE* bs0 = nullptr;  // the first
    AG_SPLINE* bs = nullptr;   // the current one
};
using ag_curve = AG_CURVE;

extern const AG_CLASS agCurveClass;

void agFreeCurve(AG_CURVE* curve) noexcept;  // one made by agMakeCurve; null is fine
struct AgFreeCurve {
    void operator()(AG_CURVE* curve) const noexcept { agFreeCurve(curve); }
};
// Frees the splines with the curve, however the ring was edited.
using AgCurvePtr = std::unique_ptr<AG_CURVE, AgFreeCurve>;

// Null together with the number of the check message that the curve would earn.
struct AgCurveResult {
    AgCurvePtr curve;
    std::int32_t message = 0;
};

// Takes the splines over and links them into a ring in this order.
[[nodiscard]] AgCurveResult agMakeCurve(std::vector<AgSplinePtr> splines,
                                        std::int32_t form = AG_OPEN);
// Copies the splines too, and which is the current one; null for a curve that fails its check.
[[nodiscard]] AgCurvePtr agCopyCurve(const AG_CURVE& curve);

// The spline after another in a ring; null where the ring is broken, that is, where the next one
// doesn't point back. Walks along it come back to where they began or end.
[[nodiscard]] inline const AG_SPLINE* agSplineAfter(const AG_SPLINE* spline) {
    return spline->next && spline->next->prev == spline ? spline->next : nullptr;
}

}  // namespace brushwork
