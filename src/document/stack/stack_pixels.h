// Pixels of one layer.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// The active layer, as far as a selection lets it; the only layer gets the background's colour.
void clearLayer(StackParts& stack, bool presentIt);
// A box in the layer's pixels becomes what shows where nobody has painted.
void clearLayerContents(StackParts& stack, std::int32_t id, const ilTile& box, bool presentIt);
void clearRegion(StackParts& stack, const ilTile& box, std::int32_t id);
// The active layer over the canvas, as far as painting isn't restricted.
void fillLayer(StackParts& stack, const LayerColor& color, bool presentIt);
// The image's pixel (0, 0) comes to the canvas' corner; else the layer is blank, unless painting is
// restricted. The blend mode becomes normal unless it is to be kept.
void fillWithImage(StackParts& stack, ilImage& image, bool presentIt, bool keepBlendMode);
void invertMask(StackParts& stack, std::int32_t id);
// Mirrors the layer's pixels and its place about the middle of the canvas.
void flipCanvas(StackParts& stack, bool horizontal, bool vertical, std::int32_t id);
// Mirrors the layer's pixels in their box.
void flipLayer(StackParts& stack, bool horizontal, bool vertical, std::int32_t id, bool bakeFirst);
// Top-down the first visible layer whose alpha at a document place reaches the threshold: its
// index, members counted, or -1.
[[nodiscard]] std::int32_t pickLayer(StackParts& stack, float x, float y, float alphaThreshold,
                                     bool skipShapes);
// Squares of that side, opaque black and white, over the canvas: a test pattern.
void checkerFill(StackParts& stack, std::int32_t size);

}  // namespace brushwork::stack
