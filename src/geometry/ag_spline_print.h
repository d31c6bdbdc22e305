// AG_SPLINE as text, for people: fields, distinct knots, control points.
#pragma once

#include <iosfwd>

#include "geometry/ag_spline.h"

namespace brushwork {

// Prints a spoiled spline too, as far as its nodes hold together.
void agPrintSpline(const AG_GOB* object, std::ostream& out);

// The words for a form; "invalid" for all below 0 and above 2.
[[nodiscard]] const char* agFormName(std::int32_t form);

}  // namespace brushwork
