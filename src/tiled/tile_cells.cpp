#include "tiled/tile_cells.h"

#include <limits>

namespace brushwork::znTiledImage {
namespace {

constexpr std::int64_t furthest = std::numeric_limits<std::int32_t>::max();

void cellSpan(std::int32_t start, std::int32_t size, std::int32_t& first, std::int32_t& count) {
    const std::int64_t last = std::min(std::int64_t{start} + size - 1, furthest);
    first = cellOf(start);
    count = cellOf(static_cast<std::int32_t>(last)) - first + 1;
}

void commonSpan(std::int32_t a, std::int32_t sizeA, std::int32_t b, std::int32_t sizeB,
                std::int32_t& start, std::int32_t& size) {
    start = std::max(a, b);
    const std::int64_t end = std::min(std::int64_t{a} + sizeA, std::int64_t{b} + sizeB);
    size = static_cast<std::int32_t>(std::clamp<std::int64_t>(end - start, 0, furthest));
}

void pixelSpan(std::int32_t cell, std::int32_t cells, std::int32_t& start, std::int32_t& size) {
    start = cell * tileSide;
    size = static_cast<std::int32_t>(std::min(std::int64_t{cells} * tileSide, furthest));
}

}  // namespace

CellRect cellsOf(const PixelRect& rect) {
    if (isEmpty(rect)) return {};
    CellRect cells;
    cellSpan(rect.x, rect.w, cells.x, cells.w);
    cellSpan(rect.y, rect.h, cells.y, cells.h);
    return cells;
}

PixelRect common(const PixelRect& a, const PixelRect& b) {
    PixelRect rect;
    commonSpan(a.x, a.w, b.x, b.w, rect.x, rect.w);
    commonSpan(a.y, a.h, b.y, b.h, rect.y, rect.h);
    if (isEmpty(rect)) rect.w = rect.h = 0;
    return rect;
}

PixelRect pixelsOfCells(const CellRect& cells) {
    PixelRect rect;
    pixelSpan(cells.x, cells.w, rect.x, rect.w);
    pixelSpan(cells.y, cells.h, rect.y, rect.h);
    return rect;
}

}  // namespace brushwork::znTiledImage
