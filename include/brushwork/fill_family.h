// FillFamily: floods and what is selected by them. Tolerance 0 to 1, what lies outside counts as
// the nearer end; places are of the view; colours red, green, blue, alpha, 0 to 1. False: nothing
// was filled, since the place lies off the canvas or the layer is a group, holds shapes or is
// locked. Without a canvas the host's showMessage says so, too.
#pragma once

#include <array>
#include <cstdint>
#include "brushwork/export.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API FillFamily {
  public:
    // Stays open, so that the tolerance can be changed, until endFill or another operation. The
    // active layer stays what it is. One undo record, of all that the fill comes to.
    bool floodFill(float x, float y, const std::array<float, 4>& color, float tolerance,
                   std::int32_t id = -2, std::int32_t canvas = -2);
    // The fill anew with another tolerance. False: none is open.
    bool continueFill(float tolerance);
    bool endFill();
    // Selects what a flood of that layer would fill; else adds to the selection. `followRamps`: a
    // slow change of colour is followed.
    bool magicWand(float x, float y, float tolerance, bool replace = true, std::int32_t id = -2,
                   bool followRamps = false);
    // The layer's pixel, four bytes, red lowest, premultiplied; 0 where it is empty.
    bool sampleFill(float x, float y, std::uint32_t* pixel, std::int32_t id = -2);
    struct Gradient {
        float fromX = 0.0f, fromY = 0.0f, toX = 0.0f, toY = 0.0f;  // layer pixels
        std::array<float, 4> fromColor{0.0f, 0.0f, 0.0f, 1.0f}, toColor{1.0f, 1.0f, 1.0f, 1.0f};
        bool radial = false;
        bool dither = true;
    };
    // Over the whole canvas, within the selection; of paint layers alone.
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
