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

}  // namespace

// A run, from the taking of the images to their release. Batches give back their pages and records
// however they end.
class Blender::Session {
  public:
    explicit Session(Blender& blender) : blender_(blender) { blender_.openWalk(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        endBatch();
        if (!blender_.holds_) blender_.closeWalk();
    }

    [[nodiscard]] bool isOpen() const { return blender_.open_; }
    [[nodiscard]] WideBox clipped(const ilTile& tile) const {
        return tile.isEmpty() ? WideBox{} : blender_.walk_.clipped(wideBox(tile));
    }
    void add(const WideBox& box) {
        blender_.share_ =
            std::clamp(box.width() * box.height() / sharesPerBox, leastShare, largestShare);
        blender_.walk_.run(box, [this](const WorkRecord& record) {
            if (blender_.holds_) blender_.holdLastPage();
            blender_.take(record);
        });
    }
    void finishBatch() {
        if (blender_.threaded_) blender_.processRecords();
        endBatch();
    }

  private:
    void endBatch() {
        if (!blender_.holds_ || blender_.walk_.lockCount() > mostHeld) {
            blender_.forgetHeldPages();
            blender_.walk_.unlock();
        }
        blender_.records_.clear();
    }

    Blender& blender_;
};

Blender::Blender(std::int32_t mode) : mode_(mode) {
    records_.reserve(1);  // what processHeld needs
}

Blender::~Blender() {
    closeWalk();
}

void Blender::openWalk() {
    open_ = open_ ? walk_.renew(inputs_) : walk_.begin(inputs_);
    if (!open_) forgetHeldPages();
    walk_.setPlainMask(plainMask_, plainMaskX_, plainMaskY_);
}

void Blender::closeWalk() {
    walk_.end();
    open_ = false;
    forgetHeldPages();
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
    if (rect.isEmpty() || runInHeldPages(rect, room)) return;
    prepareRun();
    try {
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

void Blender::forgetHeldPages() {
    heldCount_ = 0;
    ++heldTurn_;
}

// For the runs to come.
void Blender::holdLastPage() {
    const WideBox area = walk_.presentPages();
    if (heldPageAt(area.x0, area.y0)) return;
    if (heldCount_ < heldPages_.size()) heldNext_ = heldCount_++;
    HeldPage& page = heldPages_[heldNext_];
    heldNext_ = (heldNext_ + 1) % heldPages_.size();
    page.area = area;
    page.record = walk_.presentRecord();
}

const Blender::HeldPage* Blender::heldPageAt(std::int64_t x, std::int64_t y) const {
    for (std::size_t n = 0; n < heldCount_; ++n)
        if (holds(heldPages_[n].area, {x, y, x + 1, y + 1})) return &heldPages_[n];
    return nullptr;
}

// A row of small stamps stays in the same pages for long.
bool Blender::runInHeldPages(const ilTile& rect, const ilTile& room) {
    if (heldCount_ == 0) return false;
    WideBox box = wideBox(rect);
    const std::int64_t pixels = box.width() * box.height();
    if (threaded_ && pixels > someWork) return false;
    if (heldCurrent_ >= heldCount_ || !holds(heldPages_[heldCurrent_].area, box)) {
        const HeldPage* const page = heldPageAt(box.x0, box.y0);
        if (!page) return false;
        if (!holds(page->area, box)) return runAcrossHeldPages(box);
        heldCurrent_ = static_cast<std::size_t>(page - heldPages_.data());
    }
    pixelCount_ += static_cast<std::uint64_t>(pixels);
    const HeldPage& page = heldPages_[heldCurrent_];
    const WideBox around = wideBox(room);
    const std::int64_t width = (box.width() + vectorPixels - 1) & -vectorPixels;
    const std::int64_t end = std::min({box.x0 + width, around.x1, page.area.x1});
    if (end - width >= std::max(around.x0, page.area.x0)) {
        box.x1 = end;
        box.x0 = end - width;
    }
    blendHeld(page, box);
    return true;
}

// Some stamps of a row lie on the border of two pages, or the corner of four.
bool Blender::runAcrossHeldPages(const WideBox& box) {
    for (const bool blends : {false, true}) {  // nothing if a part can't be
        std::int64_t rowEnd = box.y1;
        for (std::int64_t y = box.y0; y < box.y1; y = rowEnd)
            for (std::int64_t x = box.x0; x < box.x1;) {
                const HeldPage* const page = heldPageAt(x, y);
                if (!page) return false;
                const WideBox part{x, y, std::min(box.x1, page->area.x1),
                                   std::min(box.y1, page->area.y1)};
                if (x == box.x0) rowEnd = part.y1;
                if (part.y1 != rowEnd) return false;
                if (blends) blendHeld(*page, part);
                x = part.x1;
            }
    }
    pixelCount_ += static_cast<std::uint64_t>(box.width() * box.height());
    return true;
}

void Blender::blendHeld(const HeldPage& page, const WideBox& box) {
    HeldBox part;
    part.width = static_cast<std::int32_t>(box.width());
    part.height = static_cast<std::int32_t>(box.height());
    part.right = static_cast<std::ptrdiff_t>(box.x0 - page.area.x0);
    part.up = static_cast<std::ptrdiff_t>(box.y0 - page.area.y0);
    if (plainMask_.base)
        part.mask = plainMask_.base +
                    static_cast<std::ptrdiff_t>(box.y0 - plainMaskY_) * plainMask_.rowBytes() +
                    static_cast<std::ptrdiff_t>(box.x0 - plainMaskX_);
    processHeld(page.record, part);
}

void Blender::processHeld(const WorkRecord& page, const HeldBox& box) {
    records_.assign(1, page);
    WorkRecord& record = records_[0];
    record.x += box.right;
    record.y += box.up;
    record.width = box.width;
    record.height = box.height;
    for (WorkPlane& plane : record.planes)
        if (plane.base) plane.base += box.up * plane.rowBytes() + box.right * plane.bytesPerPixel;
    if (box.mask) {
        record.planes[InputMask] = plainMask_;
        record.planes[InputMask].base = box.mask;
    }
    processRecord(0);
    records_.clear();
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
        band.y += y;
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
