// The class record of AG_SPLINE: it stands above all rooms of its operations.
#include "geometry/ag_spline.h"
#include "geometry/ag_spline_check.h"
#include "geometry/ag_spline_compare.h"
#include "geometry/ag_spline_print.h"

namespace brushwork {
namespace {

void freeObject(AG_GOB* object) noexcept {
    agFreeSpline(static_cast<AG_SPLINE*>(object));
}

AgObjectPtr copyObject(const AG_GOB* object) {
    if (!agIsOfClass(object, agSplineClass)) return nullptr;
    return {agCopySpline(*static_cast<const AG_SPLINE*>(object)).release(), {freeObject}};
}

}  // namespace

constinit const AG_CLASS agSplineClass = {
    agSplineCheckMessages,
    agSplineCompareMessages,
    1,
    0,
    "AG_SPLINE",
    0,
    sizeof(AG_SPLINE),
    &agPob1Class,
    {agCheckSpline, agCompareSplines, agPrintSpline, copyObject, freeObject}};

}  // namespace brushwork
