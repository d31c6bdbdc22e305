#include "tiled/resample_filter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace brushwork {

using namespace znTiledImage;

ResampleFilter::ResampleFilter(std::int32_t code, EdgeMode edge, std::int32_t footprintX,
                               std::int32_t footprintY)
    : type_(code),
      edgeMode_(edge ? edge : &edgeOutside),
      footprintW_(footprintX),
      footprintH_(footprintY) {}

ResampleFilter::~ResampleFilter() = default;

void ResampleFilter::setFootprint(std::int32_t w, std::int32_t h) {
    footprintW_ = w;
    footprintH_ = h;
}

bool ResampleFilter::begin(const PixelReader* reader, std::int32_t x0, std::int32_t y0,
                           std::int32_t x1, std::int32_t y1) {
    if (started_ || x1 < x0 || y1 < y0) return false;
    if (reader && !reader->covers(x0, y0, x1, y1)) return false;
    reader_ = reader;
    bytes_ = nullptr;
    words_ = nullptr;
    if (reader && reader->image().pixelKind() == PixelKind::Byte)
        bytes_ = static_cast<const TypedPixelReader<unsigned char>*>(reader);
    else if (reader)
        words_ = static_cast<const TypedPixelReader<znImage::Byte4>*>(reader);
    rect_ = {x0, y0, x1, y1, std::int64_t{x1} - x0 + 1, std::int64_t{y1} - y0 + 1};
    started_ = true;
    return true;
}

bool ResampleFilter::beginLike(const ResampleFilter& other) {
    const SampleRect& rect = other.rect_;
    return other.started_ && begin(other.reader_, rect.minX, rect.minY, rect.maxX, rect.maxY);
}

void ResampleFilter::end() {
    started_ = false;
    reader_ = nullptr;
    bytes_ = nullptr;
    words_ = nullptr;
}

void ResampleFilter::sample1(std::uint8_t* out, double, double) {
    *out = 0;
}

void ResampleFilter::sampleRow1(std::uint8_t* out, const SampleRow& row) {
    double x = row.x;
    double y = row.y;
    for (std::int32_t i = 0; i < row.count; ++i, x += row.dx, y += row.dy) sample1(out + i, x, y);
}

void ResampleFilter::sampleRow4(std::uint8_t* out, const SampleRow& row) {
    double x = row.x;
    double y = row.y;
    for (std::int32_t i = 0; i < row.count; ++i, x += row.dx, y += row.dy, out += 4)
        sample4(out, x, y);
}

std::int32_t ResampleFilter::floorOf(double place) {
    constexpr double furthest = 1 << 30;
    if (std::isnan(place)) return 0;
    return static_cast<std::int32_t>(std::floor(std::clamp(place, -furthest, furthest)));
}

std::uint8_t ResampleFilter::roundedByte(double value) {
    return static_cast<std::uint8_t>(std::nearbyint(std::clamp(value, 0.0, 255.0)));
}

const std::uint8_t* ResampleFilter::pixel1(std::int32_t x, std::int32_t y) const {
    return bytes_ && edgeMode_(rect_, x, y) ? bytes_->at(x, y) : nullptr;
}

const std::uint8_t* ResampleFilter::pixel4(std::int32_t x, std::int32_t y) const {
    return words_ && edgeMode_(rect_, x, y) ? words_->at(x, y)->bytes.data() : nullptr;
}

void ResampleFilter::gather1(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                             std::uint8_t* out) const {
    for (std::int32_t j = 0; j < h; ++j) {
        for (std::int32_t i = 0; i < w; ++i) {
            const std::uint8_t* const pixel = pixel1(x + i, y + j);
            *out++ = pixel ? *pixel : std::uint8_t{0};
        }
    }
}

// By an edge mode that reads nothing there.
bool ResampleFilter::isApart(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) const {
    const SampleRect& r = rect_;
    return edgeMode_ == &edgeOutside &&
           (x > r.maxX || y > r.maxY || x + w - 1 < r.minX || y + h - 1 < r.minY);
}

void ResampleFilter::gather4(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                             std::uint8_t* out) const {
    gather4(x, y, w, h, out, static_cast<std::size_t>(w) * 4);
}

void ResampleFilter::gather4(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                             std::uint8_t* out, std::size_t stride) const {
    static constexpr std::uint8_t nothing[4] = {};
    const SampleRect& r = rect_;
    const bool inside = x >= r.minX && y >= r.minY && x + w - 1 <= r.maxX && y + h - 1 <= r.maxY;
    const bool apart = !words_ || isApart(x, y, w, h);
    for (std::int32_t j = 0; j < h; ++j, out += stride) {
        if (apart) {
            std::memset(out, 0, static_cast<std::size_t>(w) * 4);
        } else if (inside) {
            gatherRun4(x, y + j, w, out);
        } else {
            for (std::int32_t i = 0; i < w; ++i) {
                const std::uint8_t* const pixel = pixel4(x + i, y + j);
                std::memcpy(out + 4 * i, pixel ? pixel : nothing, 4);
            }
        }
    }
}

bool ResampleFilter::isTame(const SampleRow& row) {
    constexpr double furthest = 1 << 28;
    const double endX = row.x + row.dx * row.count;
    const double endY = row.y + row.dy * row.count;
    // Not-a-number is in no range.
    return std::fabs(row.x) < furthest && std::fabs(row.y) < furthest &&
           std::fabs(endX) < furthest && std::fabs(endY) < furthest;
}

namespace {

constexpr auto numbers = [] {
    std::array<double, chunkPlaces> values{};
    for (std::size_t n = 0; n < values.size(); ++n) values[n] = static_cast<double>(n);
    return values;
}();

// Places `count` up to chunkPlaces of a sum that is rounded at each step. Between two powers of two
// doubles are evenly spaced, so there every step is rounded alike, unless it ends in the middle
// between two, and all places can be had at once.
void takeSteps(double& at, double step, int count, double* places) {
    constexpr std::uint64_t fraction = (1ull << 52) - 1;
    const double even = (at + step) - at;
    const double last = at + (count - 1) * even;
    const auto firstBits = std::bit_cast<std::uint64_t>(at);
    const auto lastBits = std::bit_cast<std::uint64_t>(last);
    const double spacing =
        std::bit_cast<double>(firstBits & (0x7FFull << 52)) * 2.220446049250313e-16;
    const bool evenly = firstBits >> 52 == lastBits >> 52 && (firstBits & fraction) != 0 &&
                        (lastBits & fraction) != 0 && 2 * std::fabs(step - even) < spacing;
    const double first = at;
    if (evenly) {
        for (std::size_t n = 0; n < static_cast<std::size_t>(count); ++n)
            places[n] = first + numbers[n] * even;
        at = last + step;
    } else {
        for (int n = 0; n < count; ++n, at += step) places[n] = at;
    }
}

}  // namespace

void ResampleFilter::takePlaces(const SampleRow& row, int count, double& x, double& y,
                                SampleChunk& chunk) {
    takeSteps(x, row.dx, count, chunk.x);
    takeSteps(y, row.dy, count, chunk.y);
}

ResampleFilter::BlockWindow ResampleFilter::windowAt(std::int32_t x, std::int32_t y,
                                                     std::int32_t side) const {
    const std::uint8_t* const pixel = block4(x, y, side, side);
    if (!pixel) return {};
    BlockWindow window;
    window.left = std::max(x & ~tileMask, rect_.minX);
    window.bottom = std::max(y & ~tileMask, rect_.minY);
    const std::int32_t endX = std::min(x | tileMask, rect_.maxX) + 2 - side;
    const std::int32_t endY = std::min(y | tileMask, rect_.maxY) + 2 - side;
    window.width = static_cast<std::uint32_t>(endX - window.left);
    window.height = static_cast<std::uint32_t>(endY - window.bottom);
    window.corner = pixel - (y - window.bottom) * std::ptrdiff_t{blockStride} -
                    (x - window.left) * std::ptrdiff_t{4};
    return window;
}

// A block on the border of filled tiles, within the rectangle: of each row the last four pixels of
// the left tile and the first four of the right one. Null for any other.
const std::uint8_t* ResampleFilter::acrossTiles(std::int32_t x, std::int32_t y, std::int32_t side,
                                                std::uint8_t* room) const {
    const SampleRect& r = rect_;
    if (x < r.minX || y < r.minY || x + side - 1 > r.maxX || y + side - 1 > r.maxY) return nullptr;
    const bool broken = (x & tileMask) > tileSide - side;
    const std::int32_t left = broken ? (x & ~tileMask) + tileSide - 4 : x;
    const std::int32_t width = broken ? 4 : side;
    const std::uint8_t* const corner = room + (x - left) * 4;
    for (std::int32_t j = 0; j < side;) {
        const std::int32_t rows = std::min(side - j, tileSide - ((y + j) & tileMask));
        const znImage::Byte4* low = words_->blockAt(left, y + j, width, rows);
        const znImage::Byte4* high = broken ? words_->blockAt(left + 4, y + j, 4, rows) : low;
        if (!low || !high) return nullptr;
        for (const std::int32_t end = j + rows; j < end; ++j, room += blockStride) {
            std::memcpy(room, low, side == 4 || broken ? 16 : 8);
            if (broken) std::memcpy(room + 16, high, 16);
            low += tileSide;
            high += tileSide;
        }
    }
    return corner;
}

// The places of a row lie on a line: if the ends of a run lie in the window, all of it does.
int ResampleFilter::placeRun(const BlockWindow& window, SampleChunk& chunk, int n, int count,
                             std::int32_t shift) {
    const auto has = [&](int at) { return window.has(chunk.ix[at] + shift, chunk.iy[at] + shift); };
    int end = count;
    if (!has(count - 1)) {
        int last = n;  // has it
        for (int out = count - 1; out - last > 1;) {
            const int middle = (last + out) / 2;
            (has(middle) ? last : out) = middle;
        }
        end = last + 1;
    }
    // Modulo the size of an address.
    const auto offsetOf = [](std::int32_t x, std::int32_t y) {
        return static_cast<std::size_t>(y) * blockStride + static_cast<std::size_t>(x) * 4;
    };
    const std::size_t base = offsetOf(window.left - shift, window.bottom - shift);
    const std::uint8_t* const corner = window.corner;
    for (; n < end; ++n) chunk.first[n] = corner + (offsetOf(chunk.ix[n], chunk.iy[n]) - base);
    return end;
}

bool ResampleFilter::placeBlocks(SampleChunk& chunk, int count, std::int32_t side,
                                 std::int32_t shift) const {
    static constexpr std::uint8_t nothing[4 * blockStride] = {};
    // The box around all blocks.
    const std::int32_t endX = chunk.ix[count - 1];
    const std::int32_t endY = chunk.iy[count - 1];
    if (!words_ ||
        isApart(std::min(chunk.ix[0], endX) + shift, std::min(chunk.iy[0], endY) + shift,
                std::abs(endX - chunk.ix[0]) + side, std::abs(endY - chunk.iy[0]) + side))
        return false;
    BlockWindow window;
    for (int n = 0; n < count;) {
        const std::int32_t x = chunk.ix[n] + shift;
        const std::int32_t y = chunk.iy[n] + shift;
        const bool whole = (x & tileMask) <= tileSide - side && (y & tileMask) <= tileSide - side;
        if (whole && !window.has(x, y)) window = windowAt(x, y, side);
        if (whole && window.has(x, y)) {
            n = placeRun(window, chunk, n, count, shift);
            continue;
        }
        if (isApart(x, y, side, side)) {
            chunk.first[n++] = nothing;
            continue;
        }
        std::uint8_t* const room = chunk.roomOf(n);
        chunk.first[n] = acrossTiles(x, y, side, room);
        if (!chunk.first[n]) {
            gather4(x, y, side, side, room, blockStride);
            chunk.first[n] = room;
        }
        ++n;
    }
    return true;
}

// Part of a row within the rectangle, cell by cell.
void ResampleFilter::gatherRun4(std::int32_t x, std::int32_t y, std::int32_t w,
                                std::uint8_t* out) const {
    while (w > 0) {
        const std::int32_t run = std::min(w, tileSide - (x & tileMask));
        const std::int32_t step = words_->blockAt(x, y, run, 1) ? 1 : 0;
        const znImage::Byte4* pixel = words_->at(x, y);
        if (step != 0 && run > 8) {
            std::memcpy(out, pixel, static_cast<std::size_t>(run) * 4);
        } else {
            // Pixel by pixel: short runs aren't worth what a copy of any length costs.
            for (std::int32_t i = 0; i < run; ++i, pixel += step)
                std::memcpy(out + 4 * i, pixel->bytes.data(), 4);
        }
        x += run;
        w -= run;
        out += 4 * run;
    }
}

}  // namespace brushwork
