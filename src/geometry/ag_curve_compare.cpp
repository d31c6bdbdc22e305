#include "geometry/ag_curve_compare.h"

#include "geometry/ag_curve_check.h"

namespace brushwork {

const char* const agCurveCompareMessages[10] = {
    "0: 9 (number of valid AG_CURVE ag_compare() messages)",
    "1: Different dimensions",
    "2: Different ->form flags",
    "3: Different number of bsplines",
    "4: Corrupt loop of bsplines found",
    "5: Different bspline types",
    "6: Different bspline degrees or spans",
    "7: Different bspline domains",
    "8: Different bspline knot vectors",
    "9: Different bspline control points"};

namespace {

// What a difference between two splines means for their curves.
std::int32_t messageOf(std::int32_t difference) {
    switch (difference) {
        case 0: return 0;
        case 1: return 1;
        case 2:
        case 3:
        case 6: return 5;
        case 4:
        case 5: return 6;
        case 7: return 7;
        case 8:
        case 9:
        case 10: return 8;
        case 11:
        case 12: return 9;
        default: return 4;
    }
}

}  // namespace

std::int32_t agCompareCurves(const AG_GOB* a, const AG_GOB* b) {
    if (!agIsOfClass(a, agCurveClass) || !agIsOfClass(b, agCurveClass)) return -1;
    const AG_CURVE& c = *static_cast<const AG_CURVE*>(a);
    const AG_CURVE& d = *static_cast<const AG_CURVE*>(b);
    if (c.dim != d.dim) return 1;
    if (c.form != d.form) return 2;
    if (c.nbs != d.nbs) return 3;
    if (!agRingHoldsTogether(c) || !agRingHoldsTogether(d)) return 4;
    const AG_SPLINE* s = c.bs0;
    const AG_SPLINE* t = d.bs0;
    for (std::int32_t i = 0; i < c.nbs; ++i, s = s->next, t = t->next)
        if (const std::int32_t difference = agSplineClass.operations.ag_compare(s, t))
            return messageOf(difference);
    return 0;
}

}  // namespace brushwork
