#include "shapes/shape_warp_renderer.h"

#include <algorithm>
#include <new>

#include "shapes/warp_render.h"

namespace brushwork {
namespace {

constexpr float cellOfSide = 0.0025f;
constexpr float smallestCell = 5.0f;

// Of the document; without one, of what the curves span.
float cellSize(const ShapeSource& shape) {
    const ilTile document = shape.owner() ? shape.owner()->documentBox() : ilTile{};
    float longer = static_cast<float>(std::max(document.nx, document.ny));
    if (document.isEmpty()) {
        const auto extent = outlineExtent(shape.curves());
        longer = extent ? static_cast<float>(
                              std::max(extent->highX - extent->lowX, extent->highY - extent->lowY))
                        : 0.0f;
    }
    const float cell = shape.parms().warpDensity * cellOfSide * longer;
    return cell > smallestCell ? cell : smallestCell;
}

struct Setup {
    WarpWires wires;
    std::optional<WarpGrid> grid;

    explicit Setup(const ShapeSource& shape) : Setup(shape.curves(), cellSize(shape)) {}

  private:
    Setup(const std::vector<HostCurve>& curves, float cell)
        : wires(curves, static_cast<double>(cell)) {
        if (const auto extent = wires.extent()) grid = WarpGrid::over(*extent, cell);
    }
};

}  // namespace

ilTile ShapeWarpRenderer::boundingBox(const ShapeSource& shape) {
    if (!maskDirty_ && spline_) return spline_->grid().box();
    const Setup setup(shape);
    return setup.grid ? setup.grid->box() : ilTile{};
}

void ShapeWarpRenderer::render(ShapeSource& shape) try {
    if (!maskDirty_ || shape.curves().empty()) return;
    spline_.reset();
    const Setup setup(shape);
    if (setup.grid) spline_.emplace(*setup.grid, setup.wires);
    maskDirty_ = false;
} catch (const std::bad_alloc&) {
    spline_.reset();
}

void ShapeWarpRenderer::apply(ShapeSource& shape, const ilTile* clip) {
    ShapeOwner* const owner = shape.owner();
    if (!target() || !spline_ || !owner) return;
    ilSmartImage* const picture = owner->warpSource();
    if (!picture) return;
    const ShapeOwner::Place place = owner->warpSourcePlace();
    const ilTile box = spline_->grid().box();
    renderWarp(*spline_, {picture, place.x, place.y}, filter_, *target(),
               clip ? intersection(box, *clip) : box);
}

}  // namespace brushwork
