// StampBatch: large stamps that wait for each other, so that threads share several at once.
//
//     StampBatch batch;
//     if (batch.isWorthIt(stamp)) batch.add({stamp, point});
//     batch.lay({high, low, mode, &brush, color, false});        // at the end of the pen's event
//
// One stamp is little work: to hand half of it to another thread costs about what it saves. Of
// several, each thread takes parts of the canvas and lays on a part what every stamp has there, in
// their order. So the bytes are those of stamps laid one after the other, whoever does what.
//
// Not for modes that write to their source, nor for canvases other than smart images. The stroke's
// thread alone; the workers of the TaskPool help.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "blending/core/tile_walk.h"
#include "strokes/stamp/stamp_binding.h"

namespace brushwork::npc {

class StampBatch {
  public:
    struct Stamp {
        StampImages images;  // the batch holds them
        StampPoint point;
    };
    // What the stamps of a batch are laid on, and with.
    struct Canvas {
        ilImage* high = nullptr;
        ilImage* low = nullptr;  // may be null
        BlendModeId mode = BlendModeId::Normal;
        const BrushParameters* brush = nullptr;
        std::uint32_t color = 0;  // packed, for stamps without a colour image
        bool lockAlpha = false;
    };

    StampBatch();
    StampBatch(const StampBatch&) = delete;
    StampBatch& operator=(const StampBatch&) = delete;
    ~StampBatch();

    // Whether to let a stamp wait: it is large, and there are workers.
    [[nodiscard]] static bool isWorthIt(const StampImages& stamp);
    // No more should wait.
    [[nodiscard]] bool isFull() const;
    [[nodiscard]] std::size_t count() const { return stamps_.size(); }
    [[nodiscard]] const Stamp& stamp(std::size_t n) const { return stamps_[n].stamp; }
    void add(const Stamp& stamp);
    // Lays all that wait; short of memory, some are left out.
    void lay(const Canvas& canvas);
    void clear();

  private:
    // The images of a stamp may leave their cache while it waits.
    struct Waiting {
        Stamp stamp;
        Ref<ilSPMemoryImg> mask, color;
    };
    // What one stamp has in one page.
    struct Part {
        std::uint64_t page;  // in the order of rows
        std::size_t stamp;
        WorkRecord record;
    };
    // Parts of one page: from first to last in `order_`.
    struct Page {
        std::size_t first, last;
    };
    // A blender of the canvas's mode for one thread at a time.
    struct Painter {
        std::shared_ptr<GenericBlender> blender;
        std::atomic_flag busy;
    };

    void preparePainters(const Canvas& canvas);
    void collectParts(const Canvas& canvas);
    void addPart(std::size_t stamp, const WorkRecord& record);
    void sortParts();
    void layPiece(std::size_t n);
    void layBand(const Page& parts, std::int32_t band);
    void layRows(GenericBlender& blender, const Part& part, std::int64_t y0, std::int64_t y1);
    Painter& claimPainter();

    std::vector<Waiting> stamps_;
    std::int64_t pixels_ = 0;  // of all that wait
    BlendSlots slots_;
    TileWalk walk_;
    std::vector<Part> parts_;
    std::vector<std::size_t> order_;  // of the parts: by page, then by stamp
    std::vector<Page> pages_;
    std::vector<std::unique_ptr<Painter>> painters_;
};

}  // namespace brushwork::npc
