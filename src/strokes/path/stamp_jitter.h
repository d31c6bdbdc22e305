// Random change of stamps, always drawn in the same order.
#pragma once

#include "brushwork/stamp_point.h"
#include "brushwork/stroke_parameters.h"

namespace brushwork {

// Changes radius, opacity, flow and angle, in this order; a jitter that is 0 draws nothing. The
// radius keeps its bounds, opacity and flow don't fall below 0, the angle may leave [0, 360).
void jitterStamp(StampPoint& stamp, const StrokeParameters& parameters);

}  // namespace brushwork
