// ShapeWarpRenderer: deforms the picture beneath a layer of shapes along the shape's curves.
//
// The curves are read in pairs (warp_wires.h). The picture is the owner's warp source; it must
// already show in the target, since cells that don't move are left as they are.
#pragma once

#include <optional>

#include "image/work/sampling_kernels.h"
#include "shapes/shape_renderer.h"
#include "shapes/warp_spline.h"
#include "shapes/warp_wires.h"

namespace brushwork {

class ShapeWarpRenderer final : public ShapeRenderer {
  public:
    // Makes the grid.
    void render(ShapeSource& shape) override;
    void apply(ShapeSource& shape, const ilTile* clip) override;
    // What the grid covers.
    [[nodiscard]] ilTile boundingBox(const ShapeSource& shape) override;

    // How the picture is read; bilinear at first.
    void setFilter(SampleMode filter) { filter_ = filter; }
    [[nodiscard]] SampleMode filter() const { return filter_; }

    // Of the last render; null if there is none.
    [[nodiscard]] const WarpSpline* spline() const { return spline_ ? &*spline_ : nullptr; }

  private:
    std::optional<WarpSpline> spline_;
    SampleMode filter_ = SampleMode::Bilinear;
};

}  // namespace brushwork
