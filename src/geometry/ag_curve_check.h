// The rules of AG_CURVE: what each of its 14 messages tests, in order.
#pragma once

#include "geometry/ag_curve.h"

namespace brushwork {

// Entry 0 and 14 messages.
extern const char* const agCurveCheckMessages[15];

// 0, or the number of the first rule that the object breaks; see ag_check. Splines of the ring
// other than bs0, its `prev` and bs have no messages of their own: one of another dimension earns
// 11, one that fails its check can't run on from the one before and earns 12.
[[nodiscard]] std::int32_t agCheckCurve(const AG_GOB* object);

// Do the splines form a loop of nbs, linked both ways?
[[nodiscard]] bool agRingHoldsTogether(const AG_CURVE& curve);

}  // namespace brushwork
