// ShapeStrokeRenderer: a brush stroke along a shape's outline.
//
// The brush runs in white over a picture of its own, where paint covers what it comes by and never
// more than covers it, however often it does; the alpha of that, times the shape's opacity, is the
// mask.
#pragma once

#include "shapes/shape_renderer.h"

namespace brushwork {

class ShapeStrokeRenderer final : public ShapeRenderer {
  public:
    // With clipStroke off, what a stroke may touch.
    static constexpr ilTile widestClip = flatTile(-4096, -4096, 8192, 8192);

    void render(ShapeSource& shape) override;
    void apply(ShapeSource& shape, const ilTile* clip) override;
    // The outline and half the stroke's width around it.
    [[nodiscard]] ilTile boundingBox(const ShapeSource& shape) override;

  private:
    Ref<ilSmartImage> mask_;  // as it was left with the parameters
};

}  // namespace brushwork
