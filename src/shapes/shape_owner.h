// ShapeOwner: what a shape may ask of the layer that holds it.
//
// A layer of shapes is one. It outlives its shapes' stay in it: whoever takes a shape out tells the
// shape by Shape::setOwner(nullptr).
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"

namespace brushwork {

class ilSmartImage;

class ShapeOwner {
  public:
    struct Place {
        std::int32_t x = 0;
        std::int32_t y = 0;
    };

    ShapeOwner(const ShapeOwner&) = delete;
    ShapeOwner& operator=(const ShapeOwner&) = delete;

    // The picture that warping shapes deform: 4 channels. Borrowed for the call that asked; null if
    // there is none.
    [[nodiscard]] virtual ilSmartImage* warpSource() = 0;
    // Where pixel (0, 0) of that picture lies among the layer's pixels.
    [[nodiscard]] virtual Place warpSourcePlace() const = 0;
    // The document's pixels in the layer's coordinates. Empty while there is no document.
    [[nodiscard]] virtual ilTile documentBox() const = 0;
    // A shape changed: the layer's pixels are to be made anew before they are shown again. Called
    // after the change; it must not draw.
    virtual void shapesChanged() = 0;

  protected:
    ShapeOwner() = default;
    ~ShapeOwner() = default;
};

}  // namespace brushwork
