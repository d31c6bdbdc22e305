#include "foundation/profiles/solid_profile.h"

namespace brushwork {

SolidProfile::SolidProfile(float edge, float falloff, float value)
    : GenericFunction(typeIdOf(Family::Solid)), edge_(edge), falloff_(falloff), value_(value) {}

Ref<GenericFunction> SolidProfile::copy() const {
    return makeRef<SolidProfile>(edge_, falloff_, value_);
}

float SolidProfile::eval(float x) const {
    if (x <= edge_) return 1.0f;
    const float beyond = x - edge_;
    return 1.0f - falloff_ * (beyond * beyond);
}

void SolidProfile::evalRange(float first, float step, float* out, std::int32_t count) const {
    evalEach(*this, first, step, out, count);
}

bool SolidProfile::equals(const GenericFunction& other) const {
    if (typeId() != other.typeId()) return false;
    const auto& solid = static_cast<const SolidProfile&>(other);
    return edge_ == solid.edge_ && falloff_ == solid.falloff_ && value_ == solid.value_;
}

bool SolidProfile::isConstant() const {
    return falloff_ == 0.0f;
}

const char* SolidProfile::name() const {
    return "solid profile";
}

}  // namespace brushwork
