#include "strokes/path/follower_choice.h"

#include "strokes/path/curve_interpolate_2d.h"
#include "strokes/path/flt_interpolate_2d.h"
#include "strokes/path/smooth_interpolate_2d.h"

namespace brushwork {

Ref<Interpolate2D> chooseFollower(std::int32_t interpolationKind, const Ref<GuideCurve>& guide,
                                  const Ref<Interpolate2D>& previous) {
    if (interpolationKind == 0) return makeRef<FltInterpolate2D>(true);
    if (interpolationKind == 2 && guide) {
        guide->mapToLayer();
        return makeRef<CurveInterpolate2D>(guide);
    }
    if (interpolationKind == 3 && !guide && previous) return previous;
    return makeRef<SmoothInterpolate2D>(0.9f, 0.921f, 6, 2);
}

}  // namespace brushwork
