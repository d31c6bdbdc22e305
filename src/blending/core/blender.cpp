#include "blending/core/blender.h"

#include <algorithm>
#include <limits>
#include <new>

#include "blending/core/batch_cut.h"
#include "blending/core/work_sharing.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t boxesPerBatch = 256;

// What a thread takes at a time; a batch of no more isn't worth waking anybody.
constexpr std::int64_t pixelsPerShare = 32768;

WideBox wideBox(const ilTile& tile) {
    return {tile.x, tile.y, std::int64_t{tile.x} + tile.nx, std::int64_t{tile.y} + tile.ny};
}

}  // namespace

// A run, from the taking of the images to their release. Batches give back their pages and records
// however they end.
class Blender::Session {
  public:
    explicit Session(Blender& blender)
        : blender_(blender), open_(blender.walk_.begin(blender.inputs_)) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        endBatch();
        blender_.walk_.end();
    }

    [[nodiscard]] bool isOpen() const { return open_; }
    [[nodiscard]] WideBox clipped(const ilTile& tile) const {
        return tile.isEmpty() ? WideBox{} : blender_.walk_.clipped(wideBox(tile));
    }
    void add(const WideBox& box) {
        blender_.walk_.run(box, [this](const WorkRecord& record) { blender_.take(record); });
    }
    void finishBatch() {
        if (blender_.threaded_) blender_.processRecords();
        endBatch();
    }

  private:
    void endBatch() {
        blender_.walk_.unlock();
        blender_.records_.clear();
    }

    Blender& blender_;
    bool open_;
};

Blender::Blender(std::int32_t mode) : mode_(mode) {}

Blender::~Blender() = default;

void Blender::reset() {
    for (Slot& slot : inputs_) slot = Slot{};
}

void Blender::run(const ilTile& rect) {
    if (rect.isEmpty()) return;
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
        std::clamp<std::int64_t>(pixelsPerShare / record.width, 1, record.height));
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
    if (records_.size() > 1 && pixels > pixelsPerShare)
        shareWork(records_.size(), process);
    else
        for (std::size_t n = 0; n < records_.size(); ++n) process(n);
}

}  // namespace brushwork::npc
