// When are two AG_SPLINE the same? What each of the 12 messages tests, in order.
#pragma once

#include "geometry/ag_spline.h"

namespace brushwork {

// Entry 0 and 12 messages.
extern const char* const agSplineCompareMessages[13];

// 0, or the number of the first difference; -1 if either isn't an AG_SPLINE. Knots are held against
// each other by distinct value, coordinates as they are stored. A box counts only where both
// splines have one. Message 10 also stands for domains that can't be read, 11 for missing points.
[[nodiscard]] std::int32_t agCompareSplines(const AG_GOB* a, const AG_GOB* b);

}  // namespace brushwork
