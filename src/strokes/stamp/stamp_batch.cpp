#include "strokes/stamp/stamp_batch.h"

#include <algorithm>
#include <new>

#include "blending/core/work_sharing.h"
#include "blending/modes/blender_registry.h"
#include "foundation/tasks/task_pool.h"
#include "image/cache/smart_page.h"

namespace brushwork::npc {
namespace {

// Smaller ones are done with before another thread has heard of them.
constexpr std::int64_t leastPixels = 4096;
constexpr std::int64_t mostPixels = 1 << 20;
constexpr std::size_t mostStamps = 64;

// A thread takes so many rows of a page at a time.
constexpr std::int32_t bandRows = 16;
constexpr std::int32_t bandsPerPage = pageSide / bandRows;

std::int64_t pixelsOf(const ilTile& box) {
    return std::int64_t{box.nx} * box.ny;
}

// Places are within 32 bits; those below 0 come first.
std::uint64_t pageAt(std::int64_t x, std::int64_t y) {
    const auto rank = [](std::int64_t place) {
        return static_cast<std::uint64_t>((place + (std::int64_t{1} << 32)) / pageSide);
    };
    return rank(y) << 32 | rank(x);
}

}  // namespace

StampBatch::StampBatch() = default;
StampBatch::~StampBatch() = default;

bool StampBatch::isWorthIt(const StampImages& stamp) {
    return pixelsOf(stamp.inked) >= leastPixels && TaskPool::instance().size() > 0;
}

bool StampBatch::isFull() const {
    return pixels_ >= mostPixels || stamps_.size() >= mostStamps;
}

void StampBatch::add(const Stamp& stamp) {
    stamps_.push_back(
        {stamp, Ref<ilSPMemoryImg>(stamp.images.mask), Ref<ilSPMemoryImg>(stamp.images.color)});
    pixels_ += pixelsOf(stamp.images.inked);
}

void StampBatch::clear() {
    stamps_.clear();
    pixels_ = 0;
}

void StampBatch::lay(const Canvas& canvas) {
    try {
        preparePainters(canvas);
        collectParts(canvas);
        sortParts();
        shareWork(pages_.size() * bandsPerPage, [this](std::size_t n) { layPiece(n); });
    } catch (const std::bad_alloc&) {
    }
    walk_.end();
    slots_ = {};
    parts_.clear();
    clear();
}

void StampBatch::preparePainters(const Canvas& canvas) {
    const auto mode = static_cast<std::int32_t>(canvas.mode);
    if (!painters_.empty() && painters_[0]->blender->mode() != mode) painters_.clear();
    // One for each worker and one for this thread.
    const auto wanted = static_cast<std::size_t>(TaskPool::instance().size()) + 1;
    while (painters_.size() < wanted) {
        auto painter = std::make_unique<Painter>();
        painter->blender = createBlender(canvas.mode);
        painters_.push_back(std::move(painter));
    }
    for (const auto& painter : painters_) {
        GenericBlender& blender = *painter->blender;
        setModeParameters(blender, *canvas.brush);
        blender.setConstantColor(canvas.color);
        blender.setLockAlpha(canvas.lockAlpha);
    }
}

void StampBatch::collectParts(const Canvas& canvas) {
    slots_[InputDestination] = {Ref<ilImage>(canvas.high), true, 0, 0};
    slots_[InputSecondDestination] = {Ref<ilImage>(canvas.low), canvas.low != nullptr, 0, 0};
    if (!walk_.begin(slots_)) return;
    for (std::size_t n = 0; n < stamps_.size(); ++n) {
        const StampImages& images = stamps_[n].stamp.images;
        const ilTile& inked = images.inked;
        walk_.setPlainMask({images.maskPixels, images.maskStride, 1, 1}, images.box.x,
                           images.box.y);
        const WideBox box{inked.x, inked.y, std::int64_t{inked.x} + inked.nx,
                          std::int64_t{inked.y} + inked.ny};
        walk_.run(walk_.clipped(box), [&](const WorkRecord& record) { addPart(n, record); });
    }
}

void StampBatch::addPart(std::size_t stamp, const WorkRecord& record) {
    Part& part = parts_.emplace_back(Part{pageAt(record.x, record.y), stamp, record});
    const StampImages& images = stamps_[stamp].stamp.images;
    if (!images.color) return;
    WorkPlane& source = part.record.planes[InputSource];
    source = {images.color->data(), images.color->sizeX(), 4, 4};
    source.base += (record.y - images.box.y) * source.rowBytes() +
                   (record.x - images.box.x) * source.bytesPerPixel;
}

void StampBatch::sortParts() {
    order_.resize(parts_.size());
    for (std::size_t n = 0; n < order_.size(); ++n) order_[n] = n;
    std::sort(order_.begin(), order_.end(), [this](std::size_t a, std::size_t b) {
        return parts_[a].page != parts_[b].page ? parts_[a].page < parts_[b].page : a < b;
    });
    pages_.clear();
    for (std::size_t n = 0; n < order_.size(); ++n) {
        if (n == 0 || parts_[order_[n]].page != parts_[order_[n - 1]].page)
            pages_.push_back({n, n});
        pages_.back().last = n + 1;
    }
}

// The caller takes pieces from the front and helpers from the back: so the even bands, which come
// first, are mostly the caller's, and stay in its processor's cache from batch to batch.
void StampBatch::layPiece(std::size_t n) {
    constexpr std::size_t ofEach = bandsPerPage / 2;
    const std::size_t evenOnes = pages_.size() * ofEach;
    const bool odd = n >= evenOnes;
    const std::size_t rest = odd ? n - evenOnes : n;
    layBand(pages_[rest / ofEach], static_cast<std::int32_t>(rest % ofEach * 2 + (odd ? 1 : 0)));
}

void StampBatch::layBand(const Page& parts, std::int32_t band) {
    const std::int64_t y = parts_[order_[parts.first]].record.y;
    const std::int64_t y0 = (y & -std::int64_t{pageSide}) + std::int64_t{band} * bandRows;
    Painter& painter = claimPainter();
    for (std::size_t n = parts.first; n < parts.last; ++n)
        layRows(*painter.blender, parts_[order_[n]], y0, y0 + bandRows);
    painter.busy.clear(std::memory_order_release);
}

void StampBatch::layRows(GenericBlender& blender, const Part& part, std::int64_t y0,
                         std::int64_t y1) {
    WorkRecord rows = part.record;
    rows.y = std::max(rows.y, y0);
    rows.height =
        static_cast<std::int32_t>(std::min(part.record.y + part.record.height, y1) - rows.y);
    if (rows.height <= 0) return;
    const auto up = static_cast<std::int32_t>(rows.y - part.record.y);
    for (WorkPlane& plane : rows.planes)
        if (plane.base) plane.base = plane.row(up);
    setStampValues(blender, stamps_[part.stamp].stamp.point);
    blender.prepareRecords();
    blender.blendRecord(rows);
}

// There is one for each thread that may come, so the search ends.
StampBatch::Painter& StampBatch::claimPainter() {
    for (std::size_t n = 0;; n = (n + 1) % painters_.size())
        if (!painters_[n]->busy.test_and_set(std::memory_order_acquire)) return *painters_[n];
}

}  // namespace brushwork::npc
