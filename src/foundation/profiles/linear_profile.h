// LinearProfile: straight lines from point to point.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "foundation/profiles/generic_function.h"

namespace brushwork {

// Left of the first point, as right of the last one, the value is the last point's; without points
// it is 0. Of points that share an x only the outer two show, as a step.
class LinearProfile final : public GenericFunction {
  public:
    struct Point {
        float x = 0.0f;
        float y = 0.0f;
        friend bool operator==(const Point&, const Point&) = default;
    };
    static constexpr std::size_t capacity = 256;

    LinearProfile();
    // Points beyond the capacity are left out, the others put in the order of their x.
    explicit LinearProfile(std::span<const Point> points);

    [[nodiscard]] Ref<GenericFunction> copy() const override;
    [[nodiscard]] float eval(float x) const override;
    void evalRange(float first, float step, float* out, std::int32_t count) const override;
    [[nodiscard]] bool equals(const GenericFunction& other) const override;
    [[nodiscard]] bool isConstant() const override;
    [[nodiscard]] const char* name() const override;

    [[nodiscard]] std::span<const Point> points() const { return {points_.data(), count_}; }

  private:
    std::size_t count_ = 0;
    std::array<Point, capacity> points_{};
};

}  // namespace brushwork
