#include "foundation/profiles/linear_profile.h"

#include <algorithm>

namespace brushwork {

LinearProfile::LinearProfile() : GenericFunction(typeIdOf(Family::Linear)) {}

LinearProfile::LinearProfile(std::span<const Point> points) : LinearProfile() {
    count_ = std::min(points.size(), capacity);
    const auto end = std::copy_n(points.begin(), count_, points_.begin());
    std::stable_sort(points_.begin(), end,
                     [](const Point& a, const Point& b) { return a.x < b.x; });
}

Ref<GenericFunction> LinearProfile::copy() const {
    return makeRef<LinearProfile>(points());
}

float LinearProfile::eval(float x) const {
    for (std::size_t i = 1; i < count_; ++i) {
        const Point& a = points_[i - 1];
        const Point& b = points_[i];
        if (a.x <= x && x <= b.x && a.x < b.x) {
            return a.y + (x - a.x) / (b.x - a.x) * (b.y - a.y);
        }
    }
    return count_ == 0 ? 0.0f : points_[count_ - 1].y;
}

void LinearProfile::evalRange(float first, float step, float* out, std::int32_t count) const {
    evalEach(*this, first, step, out, count);
}

bool LinearProfile::equals(const GenericFunction& other) const {
    if (typeId() != other.typeId()) return false;
    return std::ranges::equal(points(), static_cast<const LinearProfile&>(other).points());
}

bool LinearProfile::isConstant() const {
    return std::ranges::all_of(points(), [this](const Point& p) { return p.y == points_[0].y; });
}

const char* LinearProfile::name() const {
    return "linear profile";
}

}  // namespace brushwork
