#include "image/filter/tone_analysis.h"

#include <algorithm>
#include <array>
#include <atomic>

#include "image/chain/il_region_lock.h"
#include "image/filter/color_convert.h"
#include "image/filter/tone_records.h"

namespace brushwork {
namespace {

constexpr std::size_t blockPixels = 32;
constexpr std::size_t pageRows = 128;                             // and words of a row
constexpr std::size_t pageRecords = pageRows / toneRecordFloats;  // whose records fill a page row
constexpr std::size_t storeLimit = 102400;                        // columns and rows of a store

std::atomic<std::uint64_t> made{0};

// The image's own rows if they fit; else rows that are as much longer or shorter as needed.
std::size_t rowPixelsFor(std::uint32_t pixels, std::int32_t width) {
    const std::size_t least = (pixels + storeLimit - 1) / storeLimit;
    return std::min(storeLimit / toneRecordFloats,
                    std::max(static_cast<std::size_t>(width), least));
}

}  // namespace

ToneAnalysis::ToneAnalysis(std::int32_t width, std::int32_t height)
    : pixelCount_(static_cast<std::uint32_t>(width) * static_cast<std::uint32_t>(height)),
      hsvStore_(new ilSmartImage(ilPixel(TypeUChar, 4))),
      width_(width),
      height_(height),
      rowPixels_(rowPixelsFor(pixelCount_, width)) {}

ToneAnalysis::~ToneAnalysis() = default;

std::uint64_t ToneAnalysis::madeCount() {
    return made;
}

Ref<ToneAnalysis> ToneAnalysis::make(const std::uint32_t* pixels, std::int32_t width,
                                     std::int32_t height, const ToneAnalysis* former) {
    constexpr std::int64_t mostPixels = std::int64_t{storeLimit} * (storeLimit / toneRecordFloats);
    if (width < 1 || height < 1 || std::int64_t{width} * height > mostPixels) return nullptr;
    Ref<ToneAnalysis> analysis(new ToneAnalysis(width, height));
    if (!analysis->convert(pixels)) return nullptr;
    if (former) {
        analysis->histogram_ = former->histogram_;
        analysis->minValue_ = former->minValue_;
        analysis->medianValue_ = former->medianValue_;
        analysis->maxValue_ = former->maxValue_;
    }
    ++made;
    return analysis;
}

Ref<ToneAnalysis> ToneAnalysis::in(Ref<ToneAnalysis>& slot, const std::uint32_t* pixels,
                                   std::int32_t width, std::int32_t height) {
    const auto count = std::int64_t{width} * height;
    if (!slot || std::int64_t{slot->pixelCount()} != count) {
        Ref<ToneAnalysis> fresh = make(pixels, width, height, slot.get());
        if (!fresh) return nullptr;
        slot = fresh;
    }
    return slot;
}

std::size_t ToneAnalysis::rowCount() const {
    return (pixelCount_ + rowPixels_ - 1) / rowPixels_;
}

std::size_t ToneAnalysis::rowLength(std::size_t row) const {
    return std::min(rowPixels_, pixelCount_ - row * rowPixels_);
}

bool ToneAnalysis::convert(const std::uint32_t* pixels) {
    std::array<float, blockPixels * blockPixels * toneRecordFloats> records{};
    for (std::size_t y = 0; y < rowCount(); y += blockPixels) {
        const std::size_t rows = std::min(blockPixels, rowCount() - y);
        for (std::size_t x = 0; x < rowPixels_; x += blockPixels) {
            for (std::size_t row = 0; row < rows; ++row) {
                float* const out = records.data() + row * blockPixels * toneRecordFloats;
                const std::size_t length = rowLength(y + row);
                const std::size_t part = length > x ? std::min(blockPixels, length - x) : 0;
                const std::uint32_t* const from = pixels + (y + row) * rowPixels_ + x;
                toneRecords(from, part, out);
                count(from, out, part);
                rememberLastHue(from, part);
            }
            const auto tile = flatTile(static_cast<std::int32_t>(x * toneRecordFloats),
                                       static_cast<std::int32_t>(y), blockPixels * toneRecordFloats,
                                       static_cast<std::int32_t>(rows));
            if (hsvStore_->writeRegion(tile, records.data(), tile) != ImageOk) return false;
        }
    }
    const auto least = std::find_if(histogram_.begin(), histogram_.end(),
                                    [](std::int32_t pixelsOf) { return pixelsOf > 0; });
    if (least != histogram_.end()) medianValue_ = static_cast<float>(least - histogram_.begin());
    return true;
}

void ToneAnalysis::count(const std::uint32_t* pixels, const float* records, std::size_t count) {
    for (std::size_t n = 0; n < count; ++n) {
        if (pixels[n] >> 24 == 0) continue;
        const float value = records[n * toneRecordFloats + 2];
        minValue_ = std::min(minValue_, value);
        maxValue_ = std::max(maxValue_, value);
        ++histogram_[static_cast<std::size_t>(value + 0.5f)];
    }
}

void ToneAnalysis::walk(std::uint32_t* pixels,
                        const std::function<void(const ToneBlock&)>& visit) const {
    for (std::size_t y = 0; y < rowCount(); y += pageRows)
        for (std::size_t x = 0; x < rowPixels_; x += pageRecords) visitPage(pixels, x, y, visit);
}

void ToneAnalysis::visitPage(std::uint32_t* pixels, std::size_t x, std::size_t y,
                             const std::function<void(const ToneBlock&)>& visit) const {
    ToneBlock block;
    block.pixels = pixels + y * rowPixels_ + x;
    block.pixelStride = rowPixels_;
    block.recordStride = pageRows;
    block.width = std::min(pageRecords, rowPixels_ - x);
    block.rows = std::min(pageRows, rowCount() - y);

    const auto corner = flatTile(static_cast<std::int32_t>(x * toneRecordFloats),
                                 static_cast<std::int32_t>(y), 1, 1);
    const auto lock = hsvStore_->lockRegion(corner, nullptr, LockRead);
    const std::uint8_t* data = nullptr;
    if (lock && lock->result() == ImageOk && !lock->pages().empty())
        if (const ilPage* const page = lock->pages().front().page) data = page->data();
    std::vector<float> records;
    if (data) {
        block.records = reinterpret_cast<const float*>(data);
    } else {
        records = recordsOf(block, x, y);
        block.records = records.data();
    }

    // The last row of a folded image may end before the others.
    const bool endsHere = y + block.rows == rowCount();
    const std::size_t left = endsHere ? rowLength(rowCount() - 1) : rowPixels_;
    if (left >= x + block.width) return visit(block);
    ToneBlock end = block;
    --block.rows;
    end.rows = 1;
    end.width = left > x ? left - x : 0;
    end.pixels += block.rows * end.pixelStride;
    end.records += block.rows * end.recordStride;
    if (block.rows > 0) visit(block);
    if (end.width > 0) visit(end);
}

// A page that the cache can't give back, for want of memory or disk, is converted anew.
std::vector<float> ToneAnalysis::recordsOf(const ToneBlock& block, std::size_t x,
                                           std::size_t y) const {
    std::vector<float> records(block.rows * block.recordStride);
    for (std::size_t row = 0; row < block.rows; ++row) {
        const std::size_t length = rowLength(y + row);
        const std::size_t part = length > x ? std::min(block.width, length - x) : 0;
        toneRecords(block.pixels + row * block.pixelStride, part,
                    records.data() + row * block.recordStride);
    }
    return records;
}

}  // namespace brushwork
