// When are two AG_CURVE the same? What each of the 9 messages tests.
#pragma once

#include "geometry/ag_curve.h"

namespace brushwork {

// Entry 0 and 9 messages.
extern const char* const agCurveCompareMessages[10];

// 0, or the number of the first difference; -1 if either isn't an AG_CURVE. The curves' own fields
// come first; then spline by spline from bs0 on, the first pair that differs decides.
[[nodiscard]] std::int32_t agCompareCurves(const AG_GOB* a, const AG_GOB* b);

}  // namespace brushwork
