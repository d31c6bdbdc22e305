// TileWalk: walks the pages of several images together and makes a work record of every rectangle
// that lies in a single page of each.
//
//     if (walk.begin(slots)) {
//         walk.run(walk.clipped(box), [](const WorkRecord& record) { ... });
//         walk.unlock();
//         walk.end();
//     }
#pragma once

#include <array>
#include <cstddef>
#include <functional>

#include "blending/core/input_pages.h"
#include "blending/core/work_records.h"

namespace brushwork::npc {

class TileWalk {
  public:
    using Visitor = std::function<void(const WorkRecord&)>;

    // Takes the images as they are now. False, with nothing to do, if none is bound or one can't be
    // blended. The slots must stay until end().
    [[nodiscard]] bool begin(const BlendSlots& slots);
    void end();  // unlocks as well
    // In place of end() and begin(): inputs whose slot is as it was keep their pages locked, and
    // are taken as they were then.
    [[nodiscard]] bool renew(const BlendSlots& slots);
    // Pages that are locked, those locked twice counted twice.
    [[nodiscard]] std::size_t lockCount() const;

    // Until end(): pixels in plain memory that stand in the records as mask, in place of an image.
    // The first one lies at (x, y); visited boxes must not lead beyond them.
    void setPlainMask(const WorkPlane& pixels, std::int64_t x, std::int64_t y);

    // The part of the box in which every image has pixels.
    [[nodiscard]] WideBox clipped(WideBox box) const;
    // Visits the rectangles of a clipped box, each pixel once; parts for which a page can't be had
    // are left out. The pages of the visited ones stay locked until unlock().
    void run(const WideBox& box, const Visitor& visit);
    void unlock();

    // For a visitor, and after a run with one rectangle until the next: the largest box around the
    // present rectangle that lies in the same pages, as long as those stay locked.
    [[nodiscard]] WideBox presentPages() const;
    // Its record, without a plain mask.
    [[nodiscard]] WorkRecord presentRecord() const { return imageRecord(presentPages()); }

  private:
    void walk(std::size_t inputsLeft, const WideBox& box, const Visitor& visit);
    [[nodiscard]] WorkRecord imageRecord(const WideBox& box) const;
    [[nodiscard]] WorkRecord record(const WideBox& box) const;

    std::array<InputPages, blendInputCount> inputs_;
    WorkPlane plainMask_;  // no base: none
    std::int64_t maskX_ = 0, maskY_ = 0;
    std::array<PageView, blendInputCount> current_{};  // of the inputs that the walk has reached
};

}  // namespace brushwork::npc
