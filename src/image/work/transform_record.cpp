#include "brushwork/transform_record.h"

#include <algorithm>
#include <cmath>

namespace brushwork {
namespace {

constexpr float nothing = 0.0001f;

bool isNear(float value, float wanted) {
    return std::fabs(value - wanted) <= nothing;
}

}  // namespace

bool TransformRecord::movesCorners() const {
    return !std::all_of(corners.begin(), corners.end(),
                        [](float move) { return isNear(move, 0.0f); });
}

bool TransformRecord::isIdentity() const {
    return isNear(x, 0.0f) && isNear(y, 0.0f) && isNear(scaleX, 1.0f) && isNear(scaleY, 1.0f) &&
           isNear(rotation, 0.0f) && !movesCorners();
}

}  // namespace brushwork
