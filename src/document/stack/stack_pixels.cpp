#include "document/stack/stack_pixels.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "document/layer/layer_boxes.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_pixel_change.h"
#include "document/stack/stack_raster.h"
#include "document/stack/stack_transform.h"

namespace brushwork::stack {
namespace {

bool restricted(const StackParts& stack) {
    return stack.selection.active && stack.selection.paintMask;
}

bool isOnlyLayer(const StackParts& stack, const Layer& layer) {
    return stack.list.count == 1 && stack.list.first == &layer && layer.role() == LayerRole::Paint;
}

// Each axis by itself: the two passes of one call don't compose.
void turn(Layer& layer, bool horizontal, bool vertical) {
    if (horizontal) layer.flipImage(true, false);
    if (vertical) layer.flipImage(false, true);
}

}  // namespace

void clearLayer(StackParts& stack, bool presentIt) {
    Layer* const layer = stack.active.layer.get();
    ilSmartImage* const image = rasterOf(layer);
    if (!image) return;
    closeTransform(stack);
    if (restricted(stack)) {
        drawOnColor(stack, [&](PaintOps& painter) {
            painter.fillRegion(canvasIn(stack, *layer), ilPixel(TypeUChar, image->channels()));
        });
        image->shrinkBounds(true);
    } else {
        blankOut(*image);
        layer->clearStencil();
        if (isOnlyLayer(stack, *layer))
            image->fillRegion(canvasIn(stack, *layer), pixelOf(stack.backgroundColor, 4));
    }
    pixelsChanged(stack, *layer, presentIt);
}

void clearLayerContents(StackParts& stack, std::int32_t id, const ilTile& box, bool presentIt) {
    Layer* const layer = layerById(stack, id);
    ilSmartImage* const image = rasterOf(layer);
    if (!image || box.isEmpty()) return;
    image->fillRegion(box, image->fill());
    image->shrinkToPages();
    pixelsChanged(stack, *layer, presentIt);
}

void clearRegion(StackParts& stack, const ilTile& box, std::int32_t id) {
    clearLayerContents(stack, id, box, true);
}

void fillLayer(StackParts& stack, const LayerColor& color, bool presentIt) {
    Layer* const layer = stack.active.layer.get();
    ilSmartImage* const image = rasterOf(layer);
    if (!image) return;
    closeTransform(stack);
    const ilPixel pixel = pixelOf(color, image->channels());
    if (stack.selection.paintMask) {
        drawOnColor(stack,
                    [&](PaintOps& painter) { painter.fillRegion(canvasIn(stack, *layer), pixel); });
    } else {
        image->fillRegion(canvasIn(stack, *layer), pixel);
    }
    pixelsChanged(stack, *layer, presentIt);
}

void fillWithImage(StackParts& stack, ilImage& picture, bool presentIt, bool keepBlendMode) {
    Layer* const layer = stack.active.layer.get();
    ilSmartImage* const image = rasterOf(layer);
    if (!image) return;
    closeTransform(stack);
    const ilTile canvas = canvasIn(stack, *layer);
    const ilTile box = boundsOf(&picture);
    if (!stack.selection.paintMask) blankOut(*image);
    drawOnColor(stack, [&](PaintOps& painter) {
        painter.drawImage(&picture, canvas.x + box.x, canvas.y + box.y);
    });
    if (!keepBlendMode && layer->role() == LayerRole::Paint) layer->setBlendMode(0);
    pixelsChanged(stack, *layer, presentIt);
}

void invertMask(StackParts& stack, std::int32_t id) {
    Layer* const layer = layerById(stack, id);
    if (!layer) return;
    layer->invertMask();
    pixelsChanged(stack, *layer, true);
}

void flipLayer(StackParts& stack, bool horizontal, bool vertical, std::int32_t id, bool bakeFirst) {
    Layer* const layer = layerById(stack, id);
    if (!rasterOf(layer)) return;
    closeTransform(stack);
    if (bakeFirst) layer->bakeStencil();
    turn(*layer, horizontal, vertical);
    pixelsChanged(stack, *layer, true);
}

void flipCanvas(StackParts& stack, bool horizontal, bool vertical, std::int32_t id) {
    Layer* const layer = layerById(stack, id);
    if (!rasterOf(layer)) return;
    closeTransform(stack);
    ilTile before;
    layer->tighten();
    layer->contentBounds(before, true);
    turn(*layer, horizontal, vertical);
    if (!before.isEmpty()) {
        // Mirrored about the middle of the canvas.
        const ilTile& canvas = stack.plane.canvasBounds;
        ilTile after;
        layer->contentBounds(after, true);
        const std::int32_t toX =
            horizontal ? 2 * canvas.x + canvas.nx - before.x - before.nx : before.x;
        const std::int32_t toY =
            vertical ? 2 * canvas.y + canvas.ny - before.y - before.ny : before.y;
        float x = 0.0f;
        float y = 0.0f;
        layer->offset(&x, &y);
        layer->setOffset(x + static_cast<float>(toX - after.x),
                         y + static_cast<float>(toY - after.y));
    }
    pixelsChanged(stack, *layer, true);
}

std::int32_t pickLayer(StackParts& stack, float x, float y, float alphaThreshold, bool skipShapes) {
    const auto px = static_cast<std::int32_t>(std::floor(x));
    const auto py = static_cast<std::int32_t>(std::floor(y));
    const float least = alphaThreshold * 255.0f;
    const Layer* found = nullptr;
    static_cast<void>(eachLayer(stack.list, [&](Layer& layer) {
        if (layer.asGroup() || layer.role() != LayerRole::Paint || !layer.isVisibleInTree() ||
            (skipShapes && layer.holdsShapes()))
            return true;
        layer.prepareForRender(nullptr, false);
        std::int32_t offsetX = 0;
        std::int32_t offsetY = 0;
        layer.offsetInt(&offsetX, &offsetY);
        ilSmartImage* const image = layer.smartColor();
        if (!image) return true;
        const std::uint32_t pixel = image->getPixel(px - offsetX, py - offsetY);
        if (static_cast<float>(pixel >> 24) >= least) found = &layer;
        return true;
    }));
    return indexOf(stack, found, true);
}

void checkerFill(StackParts& stack, std::int32_t size) {
    Layer* const layer = stack.active.layer.get();
    ilSmartImage* const image = rasterOf(layer);
    const ilTile canvas = layer ? canvasIn(stack, *layer) : ilTile();
    if (!image || size < 1 || canvas.isEmpty()) return;
    const std::int32_t channels = image->channels();
    std::vector<std::uint8_t> row(static_cast<std::size_t>(canvas.nx) *
                                  static_cast<std::size_t>(channels));
    for (std::int32_t y = 0; y < canvas.ny; ++y) {
        if (y % size == 0) {
            auto byte = row.begin();
            for (std::int32_t x = 0; x < canvas.nx; ++x, byte += channels) {
                const bool white = (x / size + y / size) % 2 != 0;
                std::fill_n(byte, channels, white ? std::uint8_t{255} : std::uint8_t{0});
                if (channels == 4) byte[3] = 255;
            }
        }
        const ilTile line = flatTile(canvas.x, canvas.y + y, canvas.nx, 1);
        image->writeRegion(line, row.data(), line);
    }
    pixelsChanged(stack, *layer, true);
}

}  // namespace brushwork::stack
