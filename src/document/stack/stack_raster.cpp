#include "document/stack/stack_raster.h"

#include <algorithm>
#include <cmath>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/layer_boxes.h"

namespace brushwork::stack {

ilSmartImage* rasterOf(Layer* layer) {
    if (!layer || layer->holdsShapes() || layer->asGroup()) return nullptr;
    return layer->smartColor();
}

ilTile canvasIn(const StackParts& stack, Layer& layer) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    return moved(stack.plane.canvasBounds, -x, -y);
}

std::uint8_t byteOf(float value) {
    return value > 0.0f ? static_cast<std::uint8_t>(std::lround(std::min(value, 1.0f) * 255.0f))
                        : std::uint8_t{0};
}

ilPixel pixelOf(const LayerColor& color, std::int32_t channels) {
    const std::uint8_t alpha = byteOf(color[3]);
    if (channels == 1) return ilPixel(TypeUChar, 1, &alpha);
    const float part = color[3] > 0.0f ? std::min(color[3], 1.0f) : 0.0f;
    const std::uint8_t bytes[] = {byteOf(std::min(color[0], 1.0f) * part),
                                  byteOf(std::min(color[1], 1.0f) * part),
                                  byteOf(std::min(color[2], 1.0f) * part), alpha};
    return ilPixel(TypeUChar, 4, bytes);
}

void blankOut(ilSmartImage& image) {
    const ilTile box = boundsOf(&image);
    const ilPixel blank(TypeUChar, image.channels());
    if (!box.isEmpty()) image.fillRegion(box, blank);
    image.setFill(blank);
    image.shrinkBounds(true);
}

void cutBy(ilSmartImage& image, ilImage& mask, std::int32_t x, std::int32_t y,
           BlendFactors factors) {
    const ilTile box = boundsOf(&image);
    if (box.isEmpty()) return;
    const Ref<SoftPaintOps> painter(new SoftPaintOps(&image));
    painter->setBlendFactors(factors.source, factors.target);
    painter->rect_copy(box.x, box.y, box.nx, box.ny, PaintSource::of(&mask, box.x + x, box.y + y),
                       PaintFormat(), 0, 1.0f, 1.0f);
    image.shrinkBounds();
}

}  // namespace brushwork::stack
