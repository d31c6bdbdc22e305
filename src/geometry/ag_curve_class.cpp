// The class record of AG_CURVE: it stands above all rooms of its operations.
#include <ostream>

#include "geometry/ag_curve.h"
#include "geometry/ag_curve_check.h"
#include "geometry/ag_curve_compare.h"
#include "geometry/ag_spline_print.h"

namespace brushwork {
namespace {

void freeObject(AG_GOB* object) noexcept {
    agFreeCurve(static_cast<AG_CURVE*>(object));
}

AgObjectPtr copyObject(const AG_GOB* object) {
    if (!agIsOfClass(object, agCurveClass)) return nullptr;
    return {agCopyCurve(*static_cast<const AG_CURVE*>(object)).release(), {freeObject}};
}

// The splines follow as far as the ring holds.
void printObject(const AG_GOB* object, std::ostream& out) {
    if (!agIsOfClass(object, agCurveClass)) return;
    const AG_CURVE& c = *static_cast<const AG_CURVE*>(object);
    out << "dimension: " << c.dim << "\nsplines " << c.nbs << "\nform: " << agFormName(c.form)
        << '\n';
    const AG_SPLINE* spline = c.bs0;
    for (std::int32_t i = 0; spline && i < c.nbs; ++i) {
        agPrintSpline(spline, out);
        spline = agSplineAfter(spline);
        if (spline == c.bs0) break;
    }
}

}  // namespace

constinit const AG_CLASS agCurveClass = {
    agCurveCheckMessages,
    agCurveCompareMessages,
    1,
    0,
    "AG_CURVE",
    0,
    sizeof(AG_CURVE),
    &agPob1Class,
    {agCheckCurve, agCompareCurves, printObject, copyObject, freeObject}};

}  // namespace brushwork
