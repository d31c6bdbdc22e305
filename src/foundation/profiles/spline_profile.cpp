#include "foundation/profiles/spline_profile.h"

#include <algorithm>

namespace brushwork {
namespace {

double power(double base, std::size_t exponent) {
    double product = 1.0;
    for (std::size_t i = 0; i < exponent; ++i) product *= base;
    return product;
}

}  // namespace

SplineProfile::SplineProfile(std::span<const Control> controls)
    : GenericFunction(typeIdOf(Family::Spline)), controls_(controls.begin(), controls.end()) {
    const std::size_t n = controls_.size();
    weights_.reserve(n);
    double weight = 1.0;
    for (std::size_t i = 0; i < n; ++i) {
        weights_.push_back(weight);
        weight = weight * static_cast<double>(n - i) / static_cast<double>(i + 1);
    }
}

Ref<GenericFunction> SplineProfile::copy() const {
    return makeRef<SplineProfile>(controls());
}

float SplineProfile::eval(float x) const {
    const std::size_t n = controls_.size();
    const double at = static_cast<double>(x);
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double basis = weights_[i] * power(at, i) * power(1.0 - at, n - i);
        sum += basis * static_cast<double>(controls_[i].value);
    }
    return static_cast<float>(sum);
}

void SplineProfile::evalRange(float first, float step, float* out, std::int32_t count) const {
    evalEach(*this, first, step, out, count);
}

bool SplineProfile::equals(const GenericFunction& other) const {
    if (typeId() != other.typeId()) return false;
    return controls_ == static_cast<const SplineProfile&>(other).controls_;
}

bool SplineProfile::isConstant() const {
    return std::ranges::all_of(controls_, [](const Control& c) { return c.value == 0.0f; });
}

const char* SplineProfile::name() const {
    return "spline profile";
}

}  // namespace brushwork
