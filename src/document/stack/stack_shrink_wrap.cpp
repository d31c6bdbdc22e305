#include "document/stack/stack_shrink_wrap.h"

#include <algorithm>

#include "document/layer/layer_boxes.h"
#include "document/stack/stack_pixel_change.h"
#include "document/stack/stack_raster.h"
#include "document/stack/stack_transform.h"
#include "fill/smart_image_flood_fill_alg.h"
#include "foundation/services/log.h"
#include "image/filter/il_convolution_img.h"

namespace brushwork::stack {
namespace {

constexpr std::int32_t margin = 32;
constexpr float leastBlur = 0.01f;
constexpr double spare = 0.02;  // of tolerance

// The picture with a margin around it, blurred; null without memory.
Ref<ilSmartImage> blurred(ilSmartImage& image, const ilTile& area, float blur) {
    const Ref<ilConvolutionImg> copy(new ilConvolutionImg(area.nx, area.ny, 4));
    if (!copy->data()) return {};
    copy->copyRegion(copy->box(), image, area.x, area.y, 0, nullptr, CopyDirection::FromOther);
    if (blur > leastBlur) copy->convolve(ConvolutionKernel(-1.0f, blur, 1.0f / 3.0f));
    Ref<ilSmartImage> picture(new ilSmartImage(ilPixel(TypeUChar, 4)));
    picture->copyRegion(area, *copy, 0, 0, 0, nullptr, CopyDirection::FromOther);
    return picture;
}

// What the flood reaches from a corner of the area.
Ref<ilSmartImage> outsideOf(ilSmartImage& picture, const ilTile& area, float tolerance) {
    Ref<ilSmartImage> outside(new ilSmartImage(ilPixel(TypeUChar, 1)));
    const double distance = static_cast<double>(tolerance) + spare;
    SmartImageFloodFillAlg flood;
    flood.setImages(picture, *outside);
    flood.setTolerance(
        static_cast<std::uint8_t>(distance > 0.0 ? std::min(distance, 1.0) * 255.0 : 0.0));
    flood.setSeed(area.x + 1, area.y + 1);
    flood.run();
    return outside;
}

}  // namespace

void shrinkWrap(StackParts& stack, const LayerColor& color, float blur, float tolerance) {
    Layer* const layer = stack.active.layer.get();
    ilSmartImage* const image = rasterOf(layer);
    if (!image || image->channels() != 4) return;
    closeTransform(stack);
    layer->tighten();
    const ilTile box = boundsOf(image);
    if (box.isEmpty()) {
        log("ShrinkWrap -- empty bounds\n");
        return;
    }
    const ilTile area =
        flatTile(box.x - margin, box.y - margin, box.nx + 2 * margin, box.ny + 2 * margin);
    const Ref<ilSmartImage> picture = blurred(*image, area, blur);
    if (!picture) return;
    const Ref<ilSmartImage> outside = outsideOf(*picture, area, tolerance);
    const Ref<ilSmartImage> halo(new ilSmartImage(ilPixel(TypeUChar, 4)));
    halo->fillRegion(area, pixelOf(color, 4));
    cutBy(*halo, *outside, 0, 0, pairKeepOutside);
    drawOnColor(stack, [&](PaintOps& painter) {
        painter.setBlendFactors(pairUnder.source, pairUnder.target);
        painter.rect_copy(area.x, area.y, area.nx, area.ny,
                          PaintSource::of(halo.get(), area.x, area.y), PaintFormat(), 0, 1.0f,
                          1.0f);
    });
    layer->tighten();
    pixelsChanged(stack, *layer, true);
}

}  // namespace brushwork::stack
