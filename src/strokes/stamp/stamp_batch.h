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

#include "blending/core/input_pages.h"
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
    // What the threads read of a stamp. They share little memory: a line of it that one has written
    // to is fetched from that one's processor.
    struct alignas(64) Sheet {
        std::int32_t left, bottom, right, top;  // in the layer; outside, the mask is 0
        std::int32_t roomLeft, roomRight;       // columns that may be written as they are
        std::int32_t imagesX, imagesY;          // of the first pixel of both images
        std::uint8_t* mask;
        std::uint8_t* color;  // null: the canvas's colour
        std::int32_t maskStride, colorStride;
        float opacity, flow;
    };
    // A locked page under the stamps.
    struct Page {
        WideBox area;
        WorkPlane high, low;  // from its corner
    };
    // A blender of the canvas's mode for one thread at a time.
    struct alignas(64) Painter {
        std::shared_ptr<GenericBlender> blender;
        std::uint32_t turn = 0;  // of the batch that it is ready for
        std::atomic_flag busy;
    };

    void preparePainters();
    [[nodiscard]] bool lockPages();
    void lockPagesUnder(const WideBox& box);
    void makeSheets();
    void layPiece(std::size_t n);
    static void layRows(GenericBlender& blender, const Sheet& sheet, const Page& page,
                        const WideBox& band);
    Painter& claimPainter();

    std::vector<Waiting> stamps_;
    std::int64_t pixels_ = 0;  // of all that wait
    Canvas canvas_;            // while they are laid
    std::uint32_t turn_ = 0;   // of batches
    InputPages high_, low_;
    std::vector<Page> pages_;
    std::vector<Sheet> sheets_;
    std::vector<std::unique_ptr<Painter>> painters_;
};

}  // namespace brushwork::npc
