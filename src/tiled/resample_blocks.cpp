// How filters find the places of a row, and the blocks of pixels around them.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "tiled/resample_filter.h"

namespace brushwork {

using namespace znTiledImage;

bool ResampleFilter::isTame(const SampleRow& row) {
    constexpr double furthest = 1 << 28;
    const double endX = row.x + row.dx * row.count;
    const double endY = row.y + row.dy * row.count;
    // Not-a-number is in no range.
    return std::fabs(row.x) < furthest && std::fabs(row.y) < furthest &&
           std::fabs(endX) < furthest && std::fabs(endY) < furthest;
}

namespace {

// Places `count` up to chunkPlaces of a sum that is rounded at each step. Between two powers of two
// doubles are evenly spaced, so there every step is rounded alike, unless it ends in the middle
// between two, and all places can be had at once.
SampleSteps takeSteps(double& at, double step, int count, double* places) {
    constexpr std::uint64_t fraction = (1ull << 52) - 1;
    const double even = (at + step) - at;
    const double last = at + (count - 1) * even;
    const auto firstBits = std::bit_cast<std::uint64_t>(at);
    const auto lastBits = std::bit_cast<std::uint64_t>(last);
    const double spacing =
        std::bit_cast<double>(firstBits & (0x7FFull << 52)) * 2.220446049250313e-16;
    const bool evenly = firstBits >> 52 == lastBits >> 52 && (firstBits & fraction) != 0 &&
                        (lastBits & fraction) != 0 && 2 * std::fabs(step - even) < spacing;
    const SampleSteps steps{at, even, evenly};
    if (evenly)
        at = last + step;
    else
        for (int n = 0; n < count; ++n, at += step) places[n] = at;
    return steps;
}

// Pixels of a tile, the width a multiple of four.
void copyRows(const znImage::Byte4* from, std::int32_t width, std::int32_t rows, std::uint8_t* to) {
    const auto copyRow = [&] {
        std::memcpy(to, from, 16);
        from += tileSide;
        to += blockStride;
    };
    for (std::int32_t i = 0; i < width; i += 4) {
        const znImage::Byte4* const column = from;
        std::uint8_t* const start = to;
        std::int32_t left = rows;
        for (; left >= 4; left -= 4) copyRow(), copyRow(), copyRow(), copyRow();
        for (; left > 0; --left) copyRow();
        from = column + 4;
        to = start + 16;
    }
}

// Where blocks may begin along an axis.
struct Ends {
    std::int32_t low, end;
    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(end - low); }
};

Ends endsInTile(std::int32_t at, std::int32_t side, std::int32_t min, std::int32_t max) {
    return {std::max(at & ~tileMask, min), std::min(at | tileMask, max) + 2 - side};
}

Ends endsAtBorder(std::int32_t at, std::int32_t side, std::int32_t min, std::int32_t max) {
    const std::int32_t border = (at | tileMask) + 1;
    return {std::max(border - (side - 1), min), std::min(border - 1, max - (side - 1)) + 1};
}

// How many steps of this size lead from a place in a window of these ends out of it, about.
double stepsWithin(double place, double step, std::int32_t low, std::uint32_t size) {
    const double end = step < 0 ? low : static_cast<double>(low) + size;
    return std::fabs(end - place) / std::fabs(step);
}

}  // namespace

// The next row's line runs beside this one, as many rows on as this one runs columns, unless the
// picture is mirrored or skewed.
void ResampleFilter::lookAhead(const SampleRow& row, SampleChunk& chunk) {
    constexpr auto stride = static_cast<std::ptrdiff_t>(blockStride);
    std::ptrdiff_t rows = 0;
    for (std::ptrdiff_t& ahead : chunk.ahead) {
        ahead = row.dx < 0 ? -stride * (1 + rows) : stride * (4 + rows);
        rows = static_cast<double>(rows + 1) < std::fabs(row.dx) ? rows + 1 : 0;
    }
}

void ResampleFilter::takePlaces(const SampleRow& row, int count, double& x, double& y,
                                SampleChunk& chunk) {
    chunk.alongX = takeSteps(x, row.dx, count, chunk.x);
    chunk.alongY = takeSteps(y, row.dy, count, chunk.y);
}

// By an edge mode that reads nothing there.
bool ResampleFilter::isApart(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) const {
    const SampleRect& r = rect_;
    return edgeMode_ == &edgeOutside &&
           (x > r.maxX || y > r.maxY || x + w - 1 < r.minX || y + h - 1 < r.minY);
}

ResampleFilter::BlockWindow ResampleFilter::windowAt(std::int32_t x, std::int32_t y,
                                                     std::int32_t side) const {
    const std::uint8_t* const pixel = block4(x, y, side, side);
    if (!pixel) return {};
    const Ends across = endsInTile(x, side, rect_.minX, rect_.maxX);
    const Ends up = endsInTile(y, side, rect_.minY, rect_.maxY);
    return {
        across.low, up.low, across.size(), up.size(),
        pixel - (y - up.low) * std::ptrdiff_t{blockStride} - (x - across.low) * std::ptrdiff_t{4}};
}

// Of a block across one border between two tiles.
ResampleFilter::BlockWindow ResampleFilter::seamAt(std::int32_t x, std::int32_t y,
                                                   std::int32_t side) {
    const SampleRect& r = rect_;
    const bool crossesX = (x & tileMask) > tileSide - side;
    const bool crossesY = (y & tileMask) > tileSide - side;
    if (crossesX == crossesY || x < r.minX || y < r.minY || x + side - 1 > r.maxX ||
        y + side - 1 > r.maxY)
        return {};
    const std::uint8_t* const pixels = crossesX ? seams_.upright(*words_, cellOf(x), cellOf(y))
                                                : seams_.level(*words_, cellOf(x), cellOf(y));
    if (!pixels) return {};
    const Ends across = (crossesX ? endsAtBorder : endsInTile)(x, side, r.minX, r.maxX);
    const Ends up = (crossesY ? endsAtBorder : endsInTile)(y, side, r.minY, r.maxY);
    const std::int32_t left = crossesX ? (x | tileMask) + 1 - TileSeams::before : x & ~tileMask;
    const std::int32_t bottom = crossesY ? (y | tileMask) + 1 - TileSeams::reach : y & ~tileMask;
    return {across.low, up.low, across.size(), up.size(),
            pixels + (up.low - bottom) * std::ptrdiff_t{blockStride} +
                (across.low - left) * std::ptrdiff_t{4}};
}

// The places of a row lie on a line: if the ends of a run lie in the window, all of it does. Where
// the line leaves the window is estimated first.
int ResampleFilter::runEnd(const BlockWindow& window, const SampleChunk& chunk, int n, int count,
                           const BlockShape& shape) {
    const auto has = [&](int at) {
        return window.has(chunk.ix[at] + shape.shift, chunk.iy[at] + shape.shift);
    };
    if (has(count - 1)) return count;
    const double shift = shape.half + shape.shift;
    const double steps =
        std::min(stepsWithin(chunk.x[n] + shift, chunk.alongX.step, window.left, window.width),
                 stepsWithin(chunk.y[n] + shift, chunk.alongY.step, window.bottom, window.height));
    int end = steps < count - n ? n + 1 + static_cast<int>(steps) : count;
    end = std::min(end, count - 1);
    while (end > n + 1 && !has(end - 1)) --end;
    while (has(end)) ++end;
    return end;
}

// Copies a box of pixels to the room, with rows of 512 bytes, and answers where its corner went. Of
// the left tile come columns by fours up to the box's end or the tile's, of the right one by fours
// from the tile's start.
const std::uint8_t* ResampleFilter::copyBox(std::int32_t x, std::int32_t y, std::int32_t w,
                                            std::int32_t h, std::uint8_t* room) const {
    const SampleRect& r = rect_;
    const auto byFours = [](std::int32_t count) { return (count + 3) & ~3; };
    const std::int32_t leftWidth = std::min(w, tileSide - (x & tileMask));
    const std::int32_t wide = byFours(leftWidth);
    const std::int32_t left = std::min(x & tileMask, tileSide - wide);
    const std::int32_t tileX = x & ~tileMask;
    bool copied = x >= r.minX && y >= r.minY && x + w - 1 <= r.maxX && y + h - 1 <= r.maxY;
    for (std::int32_t j = 0; copied && j < h;) {
        const std::int32_t rowsLeft = tileSide - ((y + j) & tileMask);
        const std::int32_t rows = std::min(h - j, rowsLeft);
        // By fours, too, if the tile and the room have them.
        const std::int32_t most = std::min(rowsLeft, SampleChunk::roomRows - j);
        const std::int32_t tall = byFours(rows) <= most ? byFours(rows) : rows;
        std::uint8_t* const to = room + static_cast<std::size_t>(j) * blockStride;
        const znImage::Byte4* const near = words_->blockAt(tileX + left, y + j, wide, rows);
        copied = near != nullptr;
        if (near) copyRows(near, wide, tall, to);
        if (leftWidth < w) {
            const std::int32_t rest = byFours(w - leftWidth);
            const znImage::Byte4* const far = words_->blockAt(tileX + tileSide, y + j, rest, rows);
            copied = copied && far;
            if (far) copyRows(far, rest, tall, to + 4 * wide);
        }
        j += rows;
    }
    if (copied) return room + 4 * ((x & tileMask) - left);
    gather4(x, y, w, h, room, blockStride);
    return room;
}

// Places from number n on, up to one with a block that stands in a tile: a box around their blocks
// is gathered.
int ResampleFilter::placeBox(SampleChunk& chunk, int n, int count, const BlockShape& shape) const {
    const std::int32_t side = shape.side;
    const std::int32_t x0 = chunk.ix[n] + shape.shift;
    const std::int32_t y0 = chunk.iy[n] + shape.shift;
    const int most = std::min(count, n + SampleChunk::roomPlaces - n % SampleChunk::roomPlaces);
    std::int32_t w = side;
    std::int32_t h = side;
    int end = n + 1;
    for (; end < most; ++end) {
        const std::int32_t x = chunk.ix[end] + shape.shift;
        const std::int32_t y = chunk.iy[end] + shape.shift;
        const std::int32_t toX = std::abs(x - x0) + side;
        const std::int32_t toY = std::abs(y - y0) + side;
        if (toX + 6 > 8 * (end + 1 - n) || toY > SampleChunk::roomRows ||
            block4(x, y, side, side) || isApart(x, y, side, side))
            break;
        w = toX;
        h = toY;
    }
    const std::int32_t left = std::min(x0, chunk.ix[end - 1] + shape.shift);
    const std::int32_t bottom = std::min(y0, chunk.iy[end - 1] + shape.shift);
    const std::uint8_t* const corner = copyBox(left, bottom, w, h, chunk.roomOf(n));
    for (; n < end; ++n) {
        const auto x = static_cast<std::size_t>(chunk.ix[n] + shape.shift - left);
        const auto y = static_cast<std::size_t>(chunk.iy[n] + shape.shift - bottom);
        chunk.first[n] = corner + y * blockStride + x * 4;
    }
    return end;
}

bool ResampleFilter::placeBlocks(SampleChunk& chunk, int count, const BlockShape& shape,
                                 PointBlocks point) {
    static constexpr std::uint8_t nothing[4 * blockStride] = {};
    const std::int32_t side = shape.side;
    const std::int32_t shift = shape.shift;
    // The box around all blocks.
    const std::int32_t endX = chunk.ix[count - 1];
    const std::int32_t endY = chunk.iy[count - 1];
    if (!words_ ||
        isApart(std::min(chunk.ix[0], endX) + shift, std::min(chunk.iy[0], endY) + shift,
                std::abs(endX - chunk.ix[0]) + side, std::abs(endY - chunk.iy[0]) + side))
        return false;
    for (int n = 0; n < count;) {
        const std::int32_t x = chunk.ix[n] + shift;
        const std::int32_t y = chunk.iy[n] + shift;
        BlockWindow window = windowAt(x, y, side);
        if (!window.corner) window = seamAt(x, y, side);
        if (window.corner) {
            const int end = runEnd(window, chunk, n, count, shape);
            point(chunk, n, end, window.corner, window.left - shift, window.bottom - shift);
            n = end;
        } else if (isApart(x, y, side, side)) {
            chunk.first[n++] = nothing;
        } else {
            n = placeBox(chunk, n, count, shape);
        }
    }
    return true;
}

}  // namespace brushwork
