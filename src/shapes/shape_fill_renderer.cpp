#include "shapes/shape_fill_renderer.h"

#include <cstddef>
#include <new>
#include <vector>

#include "foundation/services/log.h"
#include "shapes/host_outline.h"
#include "shapes/image_gntr_controller.h"
#include "shapes/shape_timing.h"

namespace brushwork {
namespace {

// False without memory.
bool fillMask(const OutlineSegments& outline, const ilTile& box, float opacity,
              ilSmartImage& mask) try {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(box.nx) *
                                    static_cast<std::size_t>(box.ny));
    if (!rasterizeOutline(outline, box, bytes)) return false;
    applyOpacity(bytes, opacity);
    return mask.writeRegion(box, bytes.data(), box) == ImageOk;
} catch (const std::bad_alloc&) {
    return false;
}

}  // namespace

ilTile ShapeFillRenderer::boundingBox(const ShapeSource& shape) {
    const auto extent = outlineExtent(shape.curves());
    return extent ? filledBox(*extent) : ilTile{};
}

void ShapeFillRenderer::render(ShapeSource& shape) {
    if (!maskDirty_) return;
    const std::vector<HostCurve> curves = shape.curves();
    if (curves.empty()) return;
    const ilTile box = affordableBox(boundingBox(shape), shape);
    outline_ = OutlineSegments(closedOutline(curves));
    ShapeImageParms& parms = shape.parms();
    const Ref<ilSmartImage> mask = makeRef<ilSmartImage>();
    parms.setFillMask(mask);
    mask_ = mask;
    if (parms.fillActive && !box.isEmpty() && !fillMask(outline_, box, parms.opacity, *mask))
        return;
    maskDirty_ = false;
}

void ShapeFillRenderer::apply(ShapeSource& shape, const ilTile* clip) {
    const ShapeTiming timing;
    ShapeImageParms& parms = shape.parms();
    if (!parms.fillActive) return;
    if (parms.fillMask() != mask_.get()) {  // parameters that several shapes share
        markDirty();
        render(shape);
    }
    if (maskDirty_) return;
    if (!paintThrough(parms.fillMask(), parms.fillGenerator().generator(), parms.fillColor, clip))
        return;
    if (!timing.isActive()) return;
    ilTile box;
    parms.fillMask()->bounds(box);
    const double seconds = timing.seconds();
    log("SID: Applying Fill Performance -- rect = %d * %d, Cycles/Pixel: %f, time: %f\n",
        static_cast<int>(box.nx), static_cast<int>(box.ny),
        ShapeTiming::cyclesPerPixel(seconds, box.nx, box.ny), seconds);
}

}  // namespace brushwork
