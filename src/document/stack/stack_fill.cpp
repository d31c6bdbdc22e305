#include "document/stack/stack_fill.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/layer_boxes.h"
#include "document/stack/stack_active.h"
#include "document/stack/stack_display.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_painters.h"
#include "document/stack/stack_pixel_change.h"
#include "document/stack/stack_raster.h"
#include "document/stack/stack_transform.h"
#include "fill/smart_image_flood_fill_alg.h"

namespace brushwork::stack {
namespace {

// Makes the filled layer the active one for as long as it lives: tools paint on that. The fill
// stays open all the while.
class FilledIsActive {
  public:
    FilledIsActive(StackParts& stack, Layer& filled) : stack_(stack), former_(stack.active.layer) {
        if (former_ != &filled) activate(&filled);
    }
    FilledIsActive(const FilledIsActive&) = delete;
    FilledIsActive& operator=(const FilledIsActive&) = delete;
    ~FilledIsActive() {
        if (former_ != stack_.active.layer) activate(former_.get());
    }

  private:
    void activate(Layer* layer) {
        const LiveFill open = std::exchange(stack_.fill, LiveFill());
        setActiveLayer(stack_, layer, false, false);
        static_cast<void>(paintOps(stack_));
        stack_.fill = open;
    }

    StackParts& stack_;
    Ref<Layer> former_;
};

// The image as it was before the fill, as far as the last fill changed it.
void takeBack(LiveFill& fill) {
    if (!fill.bounds.isEmpty())
        fill.image->copyRegion(fill.bounds, *fill.original, fill.bounds.x, fill.bounds.y, 0,
                               nullptr, CopyDirection::FromOther);
    fill.bounds = ilTile{0, 0, 0, 0, 0, 1};
}

// Coverage of the flood, within the canvas: a flood ends where the picture does.
Ref<ilSmartImage> floodOf(const StackParts& stack, const LiveFill& fill, float tolerance) {
    const Ref<ilSmartImage> picture = fill.original->clone();
    if (!picture) return {};
    Ref<ilSmartImage> mask(new ilSmartImage(ilPixel(TypeUChar, 1)));
    picture->setFixedBounds(canvasIn(stack, *fill.layer));
    SmartImageFloodFillAlg flood;
    flood.setImages(*picture, *mask);
    flood.setTolerance(
        static_cast<std::uint8_t>(tolerance > 0.0f ? std::min(tolerance, 1.0f) * 255.0f : 0.0f));
    flood.setSeed(fill.seedX, fill.seedY);
    flood.run();
    return mask;
}

// The colour, where the mask covers, through what restricts painting.
void paintThrough(StackParts& stack, LiveFill& fill, ilSmartImage& mask) {
    const ilTile box = boundsOf(&mask);
    if (box.isEmpty()) return;
    const std::int32_t channels = fill.image->channels();
    const Ref<ilSmartImage> paint(new ilSmartImage(ilPixel(TypeUChar, channels)));
    paint->fillRegion(box, pixelOf(fill.color, channels));
    cutBy(*paint, mask, 0, 0, pairKeepInside);
    drawRestricted(stack, [&](PaintOps& painter) {
        painter.setBlendFactors(pairOver.source, pairOver.target);
        painter.rect_copy(box.x, box.y, box.nx, box.ny, PaintSource::of(paint.get(), box.x, box.y),
                          PaintFormat(), 0, 1.0f, 1.0f);
    });
    fill.bounds = box;
}

bool paintFlood(StackParts& stack, float tolerance) {
    const Ref<Layer> filled = stack.fill.layer;
    const FilledIsActive active(stack, *filled);
    LiveFill& fill = stack.fill;
    const Ref<ilSmartImage> mask = floodOf(stack, fill, tolerance);
    if (!mask) return false;
    const ilTile before = fill.bounds;
    takeBack(fill);
    paintThrough(stack, fill, *mask);
    noteNewPixels(stack, *fill.layer);
    const ilTile changed = unionOf(before, fill.bounds);
    if (!changed.isEmpty()) accumulateDirty(stack, changed, *fill.layer);
    present(stack);
    return true;
}

}  // namespace

bool floodFill(StackParts& stack, float x, float y, const LayerColor& color, float tolerance,
               std::int32_t id) {
    endFill(stack);
    closeTransform(stack);
    Layer* const layer = layerById(stack, id);
    if (!rasterOf(layer)) return false;
    const FilledIsActive active(stack, *layer);
    PaintOps* const painter = paintOps(stack);
    ilSmartImage* const image = ilSmartImage::from(painter ? painter->image() : nullptr);
    if (!image) return false;
    const ViewPoint place = viewToLayer(stack, {x, y}, layer->id());
    LiveFill fill;
    fill.layer = Ref<Layer>(layer);
    fill.image = Ref<ilSmartImage>(image);
    fill.original = image->clone();
    fill.seedX = truncated(std::floor(place.x));
    fill.seedY = truncated(std::floor(place.y));
    fill.color = color;
    if (!fill.original || !canvasIn(stack, *layer).contains(flatTile(fill.seedX, fill.seedY, 1, 1)))
        return false;
    fill.live = true;
    stack.fill = fill;
    return paintFlood(stack, tolerance);
}

bool continueFill(StackParts& stack, float tolerance) {
    return stack.fill.live && paintFlood(stack, tolerance);
}

void endFill(StackParts& stack) {
    stack.fill.end();
}

bool sampleFill(StackParts& stack, float x, float y, std::int32_t id, std::uint32_t& pixel) {
    Layer* const layer = layerById(stack, id);
    if (!layer) return false;
    layer->prepareForRender(nullptr, false);
    ilSmartImage* const image = layer->smartColor();
    if (!image) return false;
    const ViewPoint place = viewToLayer(stack, {x, y}, layer->id());
    pixel = image->getPixel(truncated(std::floor(place.x)), truncated(std::floor(place.y)));
    return true;
}

}  // namespace brushwork::stack
