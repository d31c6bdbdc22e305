// Pixels of one layer: whose may be changed, where the canvas lies among them, which bytes a colour
// comes to.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// The image of a layer whose pixels may be changed at once; null for shape layers, groups, null.
[[nodiscard]] ilSmartImage* rasterOf(Layer* layer);
// The canvas in the layer's pixels.
[[nodiscard]] ilTile canvasIn(const StackParts& stack, Layer& layer);
// 0 to 1 as a byte, a half away from zero; no number is 0.
[[nodiscard]] std::uint8_t byteOf(float value);
// Premultiplied; for one channel the alpha.
[[nodiscard]] ilPixel pixelOf(const LayerColor& color, std::int32_t channels);
// No pixels, and a fill of nothing.
void blankOut(ilSmartImage& image);
// Keeps of the image what the mask (of one channel) covers, by pairKeepInside, or the rest, by
// pairKeepOutside. The pixel (0, 0) of the image is the pixel (x, y) of the mask.
void cutBy(ilSmartImage& image, ilImage& mask, std::int32_t x, std::int32_t y,
           BlendFactors factors);

}  // namespace brushwork::stack
