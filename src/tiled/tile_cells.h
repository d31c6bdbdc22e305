// Pixels and the cells of 128 by 128 that they lie in.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "image/chain/coord_space.h"

namespace brushwork::znTiledImage {

inline constexpr std::int32_t tileSide = 128;  // pixels
inline constexpr std::int32_t tileShift = 7;
inline constexpr std::int32_t tileMask = tileSide - 1;
inline constexpr std::int32_t tilePixels = tileSide * tileSide;

// In pixels, or in cells where the name says so. Empty when a size is below 1.
using PixelRect = Rect<std::int32_t>;
using CellRect = Rect<std::int32_t>;

[[nodiscard]] constexpr bool isEmpty(const PixelRect& rect) {
    return rect.w < 1 || rect.h < 1;
}

// The cell of a pixel coordinate, on either side of zero.
[[nodiscard]] constexpr std::int32_t cellOf(std::int32_t place) {
    return place >> tileShift;
}

// From the cell of the first pixel to that of the last; empty for an empty rectangle. What of it
// lies beyond 32 bits doesn't count.
[[nodiscard]] CellRect cellsOf(const PixelRect& rect);

// The part that two rectangles share; sizes are 0 where there is none.
[[nodiscard]] PixelRect common(const PixelRect& a, const PixelRect& b);

// The pixels of one cell.
[[nodiscard]] constexpr PixelRect pixelsOfCell(std::int32_t x, std::int32_t y) {
    return {x * tileSide, y * tileSide, tileSide, tileSide};
}
// The pixels of a rectangle of cells; sizes stay within 32 bits.
[[nodiscard]] PixelRect pixelsOfCells(const CellRect& cells);

}  // namespace brushwork::znTiledImage
