// SplineProfile: a smooth curve shaped by control values.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "foundation/profiles/generic_function.h"

namespace brushwork {

// With n control values the curve is the sum over i = 0 .. n - 1 of
// (n over i) * x^i * (1 - x)^(n - i) * control i: the first n of the n + 1 Bernstein polynomials of
// degree n. It starts at the first control value and always ends at 0.
class SplineProfile final : public GenericFunction {
  public:
    struct Control {
        float value = 0.0f;
        float second = 0.0f;  // only carried along
        friend bool operator==(const Control&, const Control&) = default;
    };

    explicit SplineProfile(std::span<const Control> controls);

    [[nodiscard]] Ref<GenericFunction> copy() const override;
    // In double precision, rounded to float at the end; 0 without control values.
    [[nodiscard]] float eval(float x) const override;
    void evalRange(float first, float step, float* out, std::int32_t count) const override;
    [[nodiscard]] bool equals(const GenericFunction& other) const override;
    [[nodiscard]] bool isConstant() const override;
    [[nodiscard]] const char* name() const override;

    [[nodiscard]] std::span<const Control> controls() const { return controls_; }
    // n over i; exact for up to 50 control values.
    [[nodiscard]] std::span<const double> weights() const { return weights_; }

  private:
    std::vector<Control> controls_;
    std::vector<double> weights_;
};

}  // namespace brushwork
