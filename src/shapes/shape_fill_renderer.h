// ShapeFillRenderer: the inside of a shape's outline, by the even-odd rule.
#pragma once

#include "shapes/outline_raster.h"
#include "shapes/shape_renderer.h"

namespace brushwork {

class ShapeFillRenderer final : public ShapeRenderer {
  public:
    void render(ShapeSource& shape) override;
    void apply(ShapeSource& shape, const ilTile* clip) override;
    [[nodiscard]] ilTile boundingBox(const ShapeSource& shape) override;

    // Of the last render.
    [[nodiscard]] const OutlineSegments& outline() const { return outline_; }

  private:
    OutlineSegments outline_;
    Ref<ilSmartImage> mask_;  // as it was left with the parameters
};

}  // namespace brushwork
