// Poly1D: a polynomial of degree 7 at most.
#pragma once

#include <array>
#include <cstdint>

#include "foundation/profiles/generic_function.h"

namespace brushwork {

class Poly1D final : public GenericFunction {
  public:
    using Coefficients = std::array<float, 8>;  // c0 to c7

    // Zero everywhere.
    Poly1D();
    explicit Poly1D(const Coefficients& coefficients);

    [[nodiscard]] Ref<GenericFunction> copy() const override;
    // By Horner's rule in float, from the degree down.
    [[nodiscard]] float eval(float x) const override;
    void evalRange(float first, float step, float* out, std::int32_t count) const override;
    [[nodiscard]] bool equals(const GenericFunction& other) const override;
    [[nodiscard]] bool isConstant() const override;
    [[nodiscard]] const char* name() const override;

    void setCoefficients(const Coefficients& coefficients);
    // c0 + c1 * x.
    void setLine(float c0, float c1);
    [[nodiscard]] const Coefficients& coefficients() const { return coefficients_; }
    // Index of the last coefficient that isn't zero; -1 if all are.
    [[nodiscard]] std::int32_t degree() const { return degree_; }

  private:
    Coefficients coefficients_{};
    std::int32_t degree_ = -1;
};

}  // namespace brushwork
