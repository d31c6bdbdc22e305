// Which follower a stroke gets.
#pragma once

#include <cstdint>

#include "brushwork/guide_curve.h"
#include "brushwork/ref.h"
#include "strokes/path/interpolate_2d.h"

namespace brushwork {

// For an `interpolationKind` (see StrokeParameters). A guide that the stroke is to follow is mapped
// to the layer. `previous` is the follower of the last stroke, or null. Never answers null.
[[nodiscard]] Ref<Interpolate2D> chooseFollower(std::int32_t interpolationKind,
                                                const Ref<GuideCurve>& guide,
                                                const Ref<Interpolate2D>& previous);

}  // namespace brushwork
