// FillFamily: floods and what is selected by them. Tolerance 0 to 1; places are of the view.
#pragma once

#include <array>
#include <cstdint>
#include "brushwork/export.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API FillFamily {
  public:
    // Stays open, so that the tolerance can be changed, until endFill or another operation.
    bool floodFill(float x, float y, const std::array<float, 4>& color, float tolerance,
                   std::int32_t id = -2, std::int32_t canvas = -2);
    bool continueFill(float tolerance);
    bool endFill();
    bool magicWand(float x, float y, float tolerance, bool replace = true, std::int32_t id = -2,
                   bool followRamps = false);
    bool sampleFill(float x, float y, std::uint32_t* pixel, std::int32_t id = -2);
    struct Gradient {
        float fromX = 0.0f, fromY = 0.0f, toX = 0.0f, toY = 0.0f;  // layer pixels
        std::array<float, 4> fromColor{0.0f, 0.0f, 0.0f, 1.0f}, toColor{1.0f, 1.0f, 1.0f, 1.0f};
        bool radial = false;
        bool dither = true;
    };
    bool fillGradient(const Gradient& gradient, std::int32_t id = -2);

  protected:
    explicit FillFamily(FacadeState& state) : state_(state) {}
    FillFamily(const FillFamily&) = delete;
    FillFamily& operator=(const FillFamily&) = delete;
    ~FillFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
