#include "foundation/profiles/poly_1d.h"

namespace brushwork {

Poly1D::Poly1D() : GenericFunction(typeIdOf(Family::Poly1D)) {}

Poly1D::Poly1D(const Coefficients& coefficients) : Poly1D() {
    setCoefficients(coefficients);
}

Ref<GenericFunction> Poly1D::copy() const {
    return makeRef<Poly1D>(coefficients_);
}

float Poly1D::eval(float x) const {
    float r = 0.0f;
    for (std::int32_t k = degree_; k >= 1; --k) {
        r = (r + coefficients_[static_cast<std::size_t>(k)]) * x;
    }
    return coefficients_[0] + r;
}

void Poly1D::evalRange(float first, float step, float* out, std::int32_t count) const {
    evalEach(*this, first, step, out, count);
}

bool Poly1D::equals(const GenericFunction& other) const {
    if (typeId() != other.typeId()) return false;
    return coefficients_ == static_cast<const Poly1D&>(other).coefficients_;
}

bool Poly1D::isConstant() const {
    return degree_ <= 0;
}

const char* Poly1D::name() const {
    return "polynomial";
}

void Poly1D::setCoefficients(const Coefficients& coefficients) {
    coefficients_ = coefficients;
    degree_ = 7;
    while (degree_ >= 0 && coefficients_[static_cast<std::size_t>(degree_)] == 0.0f) --degree_;
}

void Poly1D::setLine(float c0, float c1) {
    setCoefficients({c0, c1});
}

}  // namespace brushwork
