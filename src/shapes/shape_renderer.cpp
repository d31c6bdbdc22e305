#include "shapes/shape_renderer.h"

#include "blending/paint/soft_paint_ops.h"
#include "foundation/services/log.h"
#include "shapes/shape_timing.h"

namespace brushwork {
namespace {

std::int32_t live = 0;

// Of smart images, on every side of zero.
constexpr ilTile widestBox = flatTile(-102400, -102400, 204800, 204800);
constexpr std::int64_t largestMask = std::int64_t{1} << 28;
// A filled outline that is cut off counts from the cut's edge, which therefore stays out of sight.
constexpr std::int32_t cutMargin = 4;

std::int64_t areaOf(const ilTile& box) {
    return box.isEmpty() ? 0 : std::int64_t{box.nx} * box.ny;
}

}  // namespace

ShapeRenderer::ShapeRenderer() {
    ++live;
    logAt(shapeLogLevel, "Creating shape Renderer - count = %d\n", static_cast<int>(live));
}

ShapeRenderer::~ShapeRenderer() {
    --live;
    logAt(shapeLogLevel, "Destroying shape Renderer - count = %d\n", static_cast<int>(live));
}

std::int32_t ShapeRenderer::liveCount() {
    return live;
}

void ShapeRenderer::draw(ShapeSource& shape, const ilTile* clip) {
    logAt(shapeLogLevel, "Rendering Shape %p -- MaskDirty=%d\n", static_cast<void*>(&shape),
          maskDirty_ ? 1 : 0);
    if (maskDirty_) render(shape);
    apply(shape, clip);
}

ilTile ShapeRenderer::affordableBox(const ilTile& box, const ShapeSource& shape) {
    ilTile cut = intersection(box, widestBox);
    if (areaOf(cut) <= largestMask) return cut;
    const ilTile document = shape.owner() ? shape.owner()->documentBox() : ilTile{};
    if (document.isEmpty()) return {};
    cut = intersection(cut, flatTile(document.x - cutMargin, document.y - cutMargin,
                                     document.nx + 2 * cutMargin, document.ny + 2 * cutMargin));
    return areaOf(cut) <= largestMask ? cut : ilTile{};
}

bool ShapeRenderer::paintThrough(ilSmartImage* mask, ImageGenerator& generator,
                                 const std::array<float, 4>& color, const ilTile* clip) {
    if (!mask || !target_) return false;
    ilTile box;
    mask->bounds(box);
    const ilTile painted = clip ? intersection(box, *clip) : box;
    if (painted.isEmpty()) return false;
    const ImageGenerator::Paint paint = generator.paint({painted, color});
    const Ref<SoftPaintOps> ops = makeRef<SoftPaintOps>(target_.get());
    ops->setBlendFactors(FactorOne, FactorOneLessSourceAlpha);
    ops->setColor(paint.color[0], paint.color[1], paint.color[2], paint.color[3]);
    if (paint.image && target_->channels() == 4) ops->setStrokeImage(paint.image.get());
    ops->rect_copy(painted.x, painted.y, painted.nx, painted.ny,
                   PaintSource::of(mask, painted.x, painted.y), {}, 0, 1.0f, 1.0f);
    return true;
}

}  // namespace brushwork
