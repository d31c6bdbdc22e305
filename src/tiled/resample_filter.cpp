#include "tiled/resample_filter.h"

#include <algorithm>
#include <cmath>
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
    seams_.forget();
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
