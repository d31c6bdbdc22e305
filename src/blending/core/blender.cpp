#include "blending/core/blender.h"

#include <algorithm>
#include <limits>
#include <new>

#include "blending/core/batch_cut.h"
#include "blending/core/work_sharing.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t boxesPerBatch = 256;
constexpr std::size_t mostHeld = 64;  // locks of pages that are kept from run to run

// A batch of no more isn't worth waking anybody.
constexpr std::int64_t muchWork = 32768;
// A batch of no more isn't worth sharing at all.
constexpr std::int64_t someWork = 8192;
// What a thread takes at a time: a sixteenth of a box, within bounds.
constexpr std::int64_t sharesPerBox = 16;
constexpr std::int64_t leastShare = 4096, largestShare = 32768;

// No vector holds more pixels.
constexpr std::int64_t vectorPixels = 8;

bool lies(const WideBox& box, const WideBox& area) {
    return box.x0 >= area.x0 && box.y0 >= area.y0 && box.x1 <= area.x1 && box.y1 <= area.y1;
}

WideBox wideBox(const ilTile& tile) {
    return {tile.x, tile.y, std::int64_t{tile.x} + tile.nx, std::int64_t{tile.y} + tile.ny};
}

}  // namespace

// A run, from the taking of the images to their release. Batches give back their pages and records
// however they end.
class Blender::Session {
  public:
    explicit Session(Blender& blender) : blender_(blender) {
        blender_.held_ = {};
        blender_.openWalk();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        endBatch();
        if (!blender_.holds_) blender_.closeWalk();
        if (blender_.open_ && blender_.walk_.lockCount() != 0) keepPages();
    }

    [[nodiscard]] bool isOpen() const { return blender_.open_; }
    [[nodiscard]] WideBox clipped(const ilTile& tile) const {
        return tile.isEmpty() ? WideBox{} : blender_.walk_.clipped(wideBox(tile));
    }
    void add(const WideBox& box) {
        blender_.share_ =
            std::clamp(box.width() * box.height() / sharesPerBox, leastShare, largestShare);
        blender_.walk_.run(box, [this](const WorkRecord& record) { blender_.take(record); });
    }
    void finishBatch() {
        if (blender_.threaded_) blender_.processRecords();
        endBatch();
    }

  private:
    void endBatch() {
        if (!blender_.holds_ || blender_.walk_.lockCount() > mostHeld) blender_.walk_.unlock();
        blender_.records_.clear();
    }

    // For the runs to come.
    void keepPages() {
        const WideBox pages = blender_.walk_.lastPages();
        blender_.walk_.setPlainMask({}, 0, 0);  // each run has its own
        if (!pages.isEmpty()) blender_.heldRecord_ = blender_.walk_.record(pages);
        blender_.held_ = pages;
    }

    Blender& blender_;
};

Blender::Blender(std::int32_t mode) : mode_(mode) {}

Blender::~Blender() {
    closeWalk();
}

void Blender::openWalk() {
    open_ = open_ ? walk_.renew(inputs_) : walk_.begin(inputs_);
    walk_.setPlainMask(plainMask_, plainMaskX_, plainMaskY_);
}

void Blender::closeWalk() {
    walk_.end();
    open_ = false;
    held_ = {};
}

void Blender::releasePages() {
    holds_ = false;
    closeWalk();
}

void Blender::reset() {
    releasePages();
    for (Slot& slot : inputs_) slot = Slot{};
    plainMask_ = {};
}

void Blender::run(const ilTile& rect) {
    run(rect, rect);
}

void Blender::run(const ilTile& rect, const ilTile& room) {
    if (rect.isEmpty()) return;
    prepareRun();
    try {
        if (runInHeldPages(rect, room)) return;
        Session session(*this);
        if (!session.isOpen()) return;
        WideBox batch;
        for (BatchCut cut(session.clipped(rect)); cut.next(batch);) {
            session.add(batch);
            session.finishBatch();
        }
    } catch (const std::bad_alloc&) {
    }
}

// A row of small stamps stays in the same pages for long.
bool Blender::runInHeldPages(const ilTile& rect, const ilTile& room) {
    WideBox box = wideBox(rect);
    if (!lies(box, held_)) return false;
    const std::int64_t pixels = box.width() * box.height();
    if (threaded_ && pixels > someWork) return false;
    pixelCount_ += static_cast<std::uint64_t>(pixels);
    const WideBox around = wideBox(room);
    const std::int64_t width = (box.width() + vectorPixels - 1) & -vectorPixels;
    const std::int64_t end = std::min({box.x0 + width, around.x1, held_.x1});
    if (end - width >= std::max(around.x0, held_.x0)) {
        box.x1 = end;
        box.x0 = end - width;
    }
    WorkRecord& record = records_.emplace_back(heldRecord_);
    record.width = static_cast<std::int32_t>(box.width());
    record.height = static_cast<std::int32_t>(box.height());
    const auto right = static_cast<std::ptrdiff_t>(box.x0 - held_.x0);
    const auto up = static_cast<std::ptrdiff_t>(box.y0 - held_.y0);
    for (WorkPlane& plane : record.planes)
        if (plane.base) plane.base += up * plane.rowBytes() + right * plane.bytesPerPixel;
    if (plainMask_.base) {
        WorkPlane& mask = record.planes[InputMask];
        mask = plainMask_;
        mask.base += static_cast<std::ptrdiff_t>(box.y0 - plainMaskY_) * mask.rowBytes() +
                     static_cast<std::ptrdiff_t>(box.x0 - plainMaskX_);
    }
    processRecord(0);
    records_.clear();
    return true;
}

void Blender::run(const TileSet& rects) {
    if (rects.empty()) return;
    prepareRun();
    try {
        Session session(*this);
        if (!session.isOpen()) return;
        std::size_t count = 0;
        for (const ilTile& rect : rects) {
            session.add(session.clipped(rect));
            if (++count % boxesPerBatch == 0) session.finishBatch();
        }
        session.finishBatch();
    } catch (const std::bad_alloc&) {
    }
}

// Alone, each record is done with at once. To be shared, they are kept, and those that are larger
// than a share (images in one page make such) are cut into bands of rows.
void Blender::take(const WorkRecord& record) {
    pixelCount_ += static_cast<std::uint64_t>(record.pixels());
    if (!threaded_) {
        records_.assign(1, record);
        processRecord(0);
        return;
    }
    const auto rows = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(share_ / record.width, 1, record.height));
    for (std::int32_t y = 0; y < record.height; y += rows) {
        WorkRecord& band = records_.emplace_back(record);
        band.height = std::min(rows, record.height - y);
        for (WorkPlane& plane : band.planes)
            if (plane.base) plane.base = plane.row(y);
    }
}

void Blender::processRecords() {
    std::int64_t pixels = 0;
    for (const WorkRecord& record : records_) pixels += record.pixels();
    const auto process = [this](std::size_t n) { processRecord(static_cast<std::int32_t>(n)); };
    if (records_.size() > 1 && pixels > someWork)
        shareWork(records_.size(), process,
                  pixels > muchWork ? SharedWork::Much : SharedWork::Some);
    else
        for (std::size_t n = 0; n < records_.size(); ++n) process(n);
}

}  // namespace brushwork::npc
