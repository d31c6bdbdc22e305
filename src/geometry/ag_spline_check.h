// The rules of AG_SPLINE: what each of its 31 messages tests, in order.
#pragma once

#include "geometry/ag_spline.h"

namespace brushwork {

// Entry 0 and 31 messages.
extern const char* const agSplineCheckMessages[32];

// 0, or the number of the first rule that the object breaks; see ag_check. Messages 24 to 27 and 31
// are tested by evaluation: denominators at both ends and at the knots between, whether ends meet,
// and tangent directions at knots whose multiplicity is the degree.
[[nodiscard]] std::int32_t agCheckSpline(const AG_GOB* object);

// May it be evaluated and converted? That is: are messages 1 to 26 out of the question?
[[nodiscard]] bool agSplineIsEvaluable(const AG_GOB* object);

// Does the list of nodes hold together, counted by m and n and linked both ways, so that it can be
// walked? Messages 2, 3, 5, 6 and 10 to 16 are out of the question.
[[nodiscard]] bool agNodesHoldTogether(const AG_SPLINE& spline);

}  // namespace brushwork
