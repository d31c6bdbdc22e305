// SolidProfile: 1 up to an edge, then a falling parabola.
#pragma once

#include <cstdint>

#include "foundation/profiles/generic_function.h"

namespace brushwork {

class SolidProfile final : public GenericFunction {
  public:
    // `value` is only carried along.
    SolidProfile(float edge, float falloff, float value = 0.0f);

    [[nodiscard]] Ref<GenericFunction> copy() const override;
    // Not bounded below: far from the edge it is negative.
    [[nodiscard]] float eval(float x) const override;
    void evalRange(float first, float step, float* out, std::int32_t count) const override;
    [[nodiscard]] bool equals(const GenericFunction& other) const override;
    [[nodiscard]] bool isConstant() const override;
    [[nodiscard]] const char* name() const override;

    [[nodiscard]] float edge() const { return edge_; }
    [[nodiscard]] float falloff() const { return falloff_; }
    [[nodiscard]] float value() const { return value_; }

  private:
    float edge_;
    float falloff_;
    float value_;
};

}  // namespace brushwork
