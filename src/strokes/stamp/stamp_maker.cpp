#include "strokes/stamp/stamp_maker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

#include "strokes/stamp/stamp_bands.h"
#include "strokes/stamp/stamp_coverage.h"
#include "strokes/stamp/stamp_sampling.h"

namespace brushwork::npc {
namespace {

constexpr std::int32_t maskColumns = 16;  // widths are multiples of these
constexpr std::int32_t colorColumns = 4;

// An image of at least this width; the present one if it fits. False if there is no memory.
bool fitImage(Ref<ilSPMemoryImg>& image, std::int32_t width, std::int32_t multiple,
              std::int32_t height, std::int32_t channels) {
    const std::int32_t stored = (width + multiple - 1) / multiple * multiple;
    if (image && image->sizeX() == stored && image->sizeY() == height) return true;
    image = makeRef<ilSPMemoryImg>(stored, height, channels);
    if (image->data()) return true;
    image.reset();
    return false;
}

// The level of a tip's image for a stamp, at least a pixel each way.
Ref<ilImage> levelFor(const Ref<ImagePaintObj>& object, const StampPoint& point) {
    if (!object) return {};
    const float across = 2.0f * point.radius;
    const auto pixels = [](float length) {
        return std::max(static_cast<std::int32_t>(length), std::int32_t{1});
    };
    return object->imageAtSize(pixels(across), pixels(across * std::fabs(point.scaleY)));
}

// The part of a mask that isn't 0.
ilTile inkedPart(ilSPMemoryImg& mask) {
    const std::int32_t width = mask.sizeX(), height = mask.sizeY();
    const std::uint8_t* const pixels = mask.data();
    const auto isBlank = [&](std::int32_t x, std::int32_t y) {
        return pixels[static_cast<std::ptrdiff_t>(y) * width + x] == 0;
    };
    const auto isBlankRow = [&](std::int32_t y) {
        const std::uint8_t* const row = pixels + static_cast<std::ptrdiff_t>(y) * width;
        return std::all_of(row, row + width, [](std::uint8_t pixel) { return pixel == 0; });
    };
    std::int32_t bottom = 0, top = height;
    while (bottom < top && isBlankRow(bottom)) ++bottom;
    while (top > bottom && isBlankRow(top - 1)) --top;
    const auto isBlankColumn = [&](std::int32_t x) {
        std::int32_t y = bottom;
        while (y < top && isBlank(x, y)) ++y;
        return y == top;
    };
    std::int32_t left = 0, right = bottom < top ? width : 0;
    while (left < right && isBlankColumn(left)) ++left;
    while (right > left && isBlankColumn(right - 1)) --right;
    return flatTile(left, bottom, right - left, top - bottom);
}

}  // namespace

// What the bands of one stamp do.
struct StampMaker::Job {
    CoverageJob mask;  // no pixels: no mask is made
    bool covered = false;
    SamplingJob shape;  // no table: none
    SamplingJob color;  // no pixels: none

    void makeRows(StampBands::Band band) const {
        if (mask.pixels) {
            CoverageJob rows = mask;
            rows.firstRow = band.firstRow;
            rows.rows = band.rows;
            rows.pixels += static_cast<std::ptrdiff_t>(band.firstRow) * mask.rowBytes;
            if (covered)
                coverRows(rows);
            else
                fillRows(rows);
            if (shape.table.cells) multiplyShape(part(shape, band));
        }
        if (color.pixels) sampleColors(part(color, band));
    }

  private:
    static SamplingJob part(SamplingJob job, StampBands::Band band) {
        job.firstRow = band.firstRow;
        job.rows = band.rows;
        job.pixels += static_cast<std::ptrdiff_t>(band.firstRow) * job.rowBytes;
        return job;
    }

    static void fillRows(const CoverageJob& rows) {
        for (std::int32_t row = 0; row < rows.rows; ++row) {
            std::uint8_t* const out =
                rows.pixels + static_cast<std::ptrdiff_t>(row) * rows.rowBytes;
            std::memset(out, 255, static_cast<std::size_t>(rows.width));
            std::memset(out + rows.width, 0, static_cast<std::size_t>(rows.rowBytes - rows.width));
        }
    }
};

StampMaker::StampMaker(Ref<StampImageCache> cache) : lease_(std::move(cache), tip_.identity()) {}

void StampMaker::setCache(const Ref<StampImageCache>& cache) {
    if (cache) lease_ = StampCacheLease(cache, tip_.identity());
}

void StampMaker::setTip(const StampTip& tip) {
    freeTables();
    tip_ = tip;
    lease_ = StampCacheLease(lease_.cache(), tip_.identity());
}

void StampMaker::freeTables() {
    shapeTable_.clear();
    colorTable_.clear();
    made_.reset();
    current_ = {};
}

void StampMaker::refreshLease() {
    if (!tip_.differsFrom(lease_.identity())) return;
    lease_ = StampCacheLease(lease_.cache(), tip_.identity());
}

bool StampMaker::wants(StampColors colors) const {
    return tip_.colors == colors && tip_.color;
}

bool StampMaker::prepareMask(const StampFrame& frame, const StampPoint& point,
                             Ref<ilSPMemoryImg>& mask, Job& job) {
    if (!fitImage(mask, frame.box.nx, maskColumns, frame.box.ny, 1)) return false;
    job.mask.map = frame.toBrush;
    job.mask.width = frame.box.nx;
    job.mask.rowBytes = mask->sizeX();
    job.mask.pixels = mask->data();
    job.covered = tip_.procedural;
    if (tip_.procedural) {
        maskTable_.build(frame.radius, tip_.hardness);
        job.mask.profile = maskTable_.profileFor(frame.scaleX, frame.scaleY);
    }
    const Ref<ilImage> level = levelFor(tip_.shape, point);
    const bool usable = level && dynamic_cast<ilSPMemoryImg*>(level.get()) &&
                        level->channels() == 1 && shapeTable_.build(level);
    if (!usable) return true;
    const TableView table = shapeTable_.view();
    job.shape = {frame.toTable(table.width, table.height),
                 table,
                 0,
                 0,
                 job.mask.width,
                 job.mask.rowBytes,
                 job.mask.pixels};
    return true;
}

bool StampMaker::prepareColor(const StampFrame& frame, const StampPoint& point,
                              Ref<ilSPMemoryImg>& color, Job& job) {
    const Ref<ilImage> level = levelFor(tip_.color, point);
    if (!level || level->channels() != 4 || !colorTable_.build(level)) return false;
    if (!fitImage(color, frame.box.nx, colorColumns, frame.box.ny, 4)) return false;
    const TableView table = colorTable_.view();
    job.color = {frame.toTable(table.width, table.height),
                 table,
                 0,
                 0,
                 frame.box.nx,
                 color->sizeX() * 4,
                 color->data()};
    return true;
}

// What is found needs no frame.
bool StampMaker::takeFromCache(const StampKey& key) {
    refreshLease();
    if (!key.inReach) return false;
    const StampImageCacheItem* const found = lease_.find(key.key);
    if (found) show(*found, key.x, key.y);
    return found != nullptr;
}

void StampMaker::makeForCache(const StampFrame& frame, const StampPoint& point,
                              const StampKey& key) {
    made_ = makeRef<StampImageCacheItem>();
    StampImageCacheItem* const item = made_.get();
    Job job;
    if (!key.inReach || !prepareMask(frame, point, item->mask, job)) return;
    if (wants(StampColors::Kept)) prepareColor(frame, point, item->color, job);
    StampBands(frame.box.nx, frame.box.ny).run([&job](StampBands::Band band) {
        job.makeRows(band);
    });
    item->inked = inkedPart(*item->mask);
    item->box = frame.box;
    item->box.x -= key.x;
    item->box.y -= key.y;
    item->maskPixels = job.mask.pixels;
    item->maskStride = job.mask.rowBytes;
    show(*item, key.x, key.y);
    lease_.insert(made_, key.key);
}

void StampMaker::show(const StampImageCacheItem& item, std::int32_t x, std::int32_t y) {
    current_.box = item.box;
    current_.box.x += x;
    current_.box.y += y;
    current_.inked = item.inked;
    current_.inked.x += current_.box.x;
    current_.inked.y += current_.box.y;
    current_.mask = item.mask.get();
    current_.maskPixels = item.maskPixels;
    current_.maskStride = item.maskStride;
    current_.color = item.color.get();
}

const StampImages& StampMaker::make(const StampPoint& quantized) {
    const bool cached = keepsImages();
    const StampKey key = cached ? placedStampKey(quantized) : StampKey();
    if (cached && !wants(StampColors::Fresh) && takeFromCache(key)) return current_;
    const StampFrame frame = stampFrame(quantized);
    current_ = {frame.box, frame.box};
    if (frame.box.isEmpty()) return current_;
    Job job;
    if (cached) {
        // Scales out of range may share a key with a stamp of another size.
        if (!takeFromCache(key) || current_.box != frame.box) makeForCache(frame, quantized, key);
    } else if (prepareMask(frame, quantized, scratchMask_, job)) {
        current_.mask = scratchMask_.get();
        current_.maskPixels = job.mask.pixels;
        current_.maskStride = job.mask.rowBytes;
        if (wants(StampColors::Kept) && prepareColor(frame, quantized, scratchColor_, job))
            current_.color = scratchColor_.get();
    }
    if (wants(StampColors::Fresh) && prepareColor(frame, quantized, scratchColor_, job))
        current_.color = scratchColor_.get();
    if (job.mask.pixels || job.color.pixels)
        StampBands(frame.box.nx, frame.box.ny).run([&job](StampBands::Band band) {
            job.makeRows(band);
        });
    return current_;
}

}  // namespace brushwork::npc
