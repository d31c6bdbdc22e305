// Rectangles of pixels between buffers and the cells of an image.
//
// A buffer holds the rectangle's pixels as they are, its lower left one first; `stride` is the
// distance of its rows in bytes. Rectangles may reach beyond the image's grid: what lies there
// reads as the fill and isn't written. Those that answer a boolean are false if there was no memory
// for a cell; other cells are done all the same.
#pragma once

#include <cstddef>

#include "tiled/tiled_image.h"

namespace brushwork::znTiledImage {

void readRect(const Image& image, const PixelRect& rect, void* buffer, std::size_t stride);
// Empty and solid cells turn into filled ones first.
[[nodiscard]] bool writeRect(Image& image, const PixelRect& rect, const void* buffer,
                             std::size_t stride);
// Makes every cell of the rectangle a filled one of its own, pixels kept.
[[nodiscard]] bool makeFilled(Image& image, const PixelRect& rect);
// What a fill does with the block of a cell that it covers wholly: give it back, or keep it where
// it is, for those who hold its address.
enum class Blocks { Release, Keep };
// Cells that are covered wholly turn solid; of others part of the rows changes.
[[nodiscard]] bool fillRect(Image& image, const PixelRect& rect, const void* pixel,
                            Blocks blocks = Blocks::Release);

// Writes, and leaves no block behind where a cell is covered wholly with one value: that cell turns
// solid, or empty if the value is the fill. Of a cell that is covered in part the rest stays, and
// it turns into a filled one only if that is needed.
[[nodiscard]] bool writeCompressed(Image& image, const void* pixels, const PixelRect& rect,
                                   std::size_t stride);
// Does the same to the cells of a rectangle as they are.
[[nodiscard]] bool compressRect(Image& image, const PixelRect& rect);

}  // namespace brushwork::znTiledImage
