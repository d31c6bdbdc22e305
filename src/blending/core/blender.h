// npc::Blender: walks several images together and hands matching rectangles of them to its
// subclass, on the workers of the TaskPool if asked.
//
// Coordinates are the blend's own; each input says where it is placed in them. Rows run upward.
// A blender belongs to one thread at a time; its runs never overlap.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "blending/core/tile_walk.h"
#include "blending/core/work_records.h"
#include "brushwork/il_tile.h"

namespace brushwork::npc {

// Orders boxes by rows, then along the row: the order in which a set of rectangles is run.
struct TileOrder {
    bool operator()(const ilTile& a, const ilTile& b) const {
        return a.y != b.y     ? a.y < b.y
               : a.x != b.x   ? a.x < b.x
               : a.nx != b.nx ? a.nx < b.nx
                              : a.ny < b.ny;
    }
};
using TileSet = std::set<ilTile, TileOrder>;

class Blender {
  public:
    using Slot = BlendSlot;

    explicit Blender(std::int32_t mode);
    Blender(const Blender&) = delete;
    Blender& operator=(const Blender&) = delete;

    // Slots 0 to 2 of the virtual operations, in this order.
    virtual ~Blender();
    // Lets go of all images and puts the first state back.
    virtual void reset();

  protected:
    // Blends record `index` of the present run. Called from workers; must not change the blender.
    virtual void processRecord(std::int32_t index) = 0;

  public:
    // Blends a box. What of it lies outside an image that has bounds, or in a page that can't be
    // had, stays untouched. (Smart and pattern images have none.) Nothing happens if an image's
    // pixels aren't interleaved bytes; short of memory, the rest of the box is left out.
    void run(const ilTile& rect);
    // The same for a box that lies in `room`, where the mask is 0 outside of the box: pixels there
    // may be written as they are, to fill whole vectors.
    void run(const ilTile& rect, const ilTile& room);
    // Boxes that don't meet, as one run, the pages of 256 of them locked at a time.
    void run(const TileSet& rects);

    // From here to releasePages() runs keep the pages that they lock, for a row of small runs close
    // to each other. Meanwhile nobody else may change the images or share their pages, nor change
    // an image that stays bound in size. Runs show in the pixels at once.
    void holdPages() { holds_ = true; }
    void releasePages();

    [[nodiscard]] std::int32_t mode() const { return mode_; }
    // Shares the work of a run with the workers of the TaskPool if there is enough of it.
    [[nodiscard]] bool threaded() const { return threaded_; }
    void setThreaded(bool on) { threaded_ = on; }
    // Pixels blended since construction, summed over all runs.
    [[nodiscard]] std::uint64_t pixelCount() const { return pixelCount_; }
    [[nodiscard]] const Slot& input(BlendInput index) const { return inputs_[index]; }

  protected:
    [[nodiscard]] const WorkRecord& record(std::int32_t index) const {
        return records_[static_cast<std::size_t>(index)];
    }
    // Called once at the start of a run.
    virtual void prepareRun() {}

    // A box that lies in a page that is held.
    struct HeldBox {
        std::int32_t width = 0, height = 0;
        std::ptrdiff_t right = 0, up = 0;  // pixels from the corner of the page
        std::uint8_t* mask = nullptr;      // of a plain mask; else null
    };
    // Blends one, as processRecord would the record of it. The record of a page has no plain mask.
    virtual void processHeld(const WorkRecord& page, const HeldBox& box);
    // As long as the turn is the same, the records of pages differ in their places alone.
    [[nodiscard]] std::uint32_t heldTurn() const { return heldTurn_; }

    // A changed slot isn't what the held pages were locked for.
    void forgetHeldPages();

    BlendSlots inputs_;    // who changes one forgets the held pages
    WorkPlane plainMask_;  // stands for a mask image where it has a base
    std::int32_t plainMaskX_ = 0, plainMaskY_ = 0;
    std::vector<float> parameters_;
    std::vector<std::int32_t> integerParameters_;
    std::vector<bool> flags_;

  private:
    class Session;

    // Where no input changes page.
    struct HeldPage {
        WideBox area;
        WorkRecord record;  // of its corner, without a plain mask
    };
    [[nodiscard]] bool runInHeldPages(const ilTile& rect, const ilTile& room);
    [[nodiscard]] bool runAcrossHeldPages(const WideBox& box);
    [[nodiscard]] const HeldPage* heldPageAt(std::int64_t x, std::int64_t y) const;
    void blendHeld(const HeldPage& page, const WideBox& box);
    void holdLastPage();
    void openWalk();
    void closeWalk();
    void take(const WorkRecord& record);
    void processRecords();

    std::int32_t mode_;
    TileWalk walk_;
    bool open_ = false;  // the walk: it has images to blend
    bool holds_ = false;
    std::array<HeldPage, 8> heldPages_;  // of which the first ones count
    std::size_t heldCount_ = 0;
    std::size_t heldNext_ = 0;     // the one that goes next
    std::size_t heldCurrent_ = 0;  // where the last box lay
    std::uint32_t heldTurn_ = 0;
    std::vector<WorkRecord> records_;
    std::uint64_t pixelCount_ = 0;
    std::int64_t share_ = 0;  // pixels that a thread takes at a time
    bool threaded_ = false;
};

}  // namespace brushwork::npc
