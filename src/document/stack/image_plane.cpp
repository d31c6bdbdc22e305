#include "document/stack/image_plane.h"

#include "blending/paint/soft_paint_ops.h"
#include "foundation/host/host_canvas.h"

namespace brushwork {
namespace {

// A plane may not be larger than a picture can be on either axis.
constexpr std::int32_t mostPixels = 102400;

bool isSize(std::int32_t width, std::int32_t height) {
    return width > 0 && height > 0 && width <= mostPixels && height <= mostPixels;
}

}  // namespace

HostSurface ImagePlane::surface() const {
    return hostCanvasSurface(canvas);
}

bool ImagePlane::surfaceIsTransparent() const {
    return hostSurfaceIsTransparent(surface());
}

bool ImagePlane::wrapSurface() {
    const HostSurface shown = surface();
    std::int32_t width = 0;
    std::int32_t height = 0;
    void* const pixels = hostSurfacePixels(shown);
    if (!pixels || !hostSurfaceSize(shown, width, height) || !isSize(width, height)) return false;
    image = Ref<ilSPMemoryImg>(
        new ilSPMemoryImg(pixels, width, height, 1, 4, TypeUChar, OrderInterleaved));
    ops = Ref<PaintOps>(new SoftPaintOps(image.get()));
    refreshBounds();
    return true;
}

bool ImagePlane::makeOwn(std::int32_t width, std::int32_t height) {
    if (!isSize(width, height)) return false;
    const Ref<ilSPMemoryImg> made(new ilSPMemoryImg(width, height, 4));
    if (!made->data()) return false;
    image = made;
    image->fillRegion(flatTile(0, 0, width, height), ilPixel(TypeUChar, 4));
    ops = Ref<PaintOps>(new SoftPaintOps(image.get()));
    refreshBounds();
    return true;
}

void ImagePlane::refreshBounds() {
    if (!image) return;
    canvasBounds = flatTile(-originX, -originY, image->sizeX(), image->sizeY());
}

}  // namespace brushwork
