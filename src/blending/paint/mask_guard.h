// MaskGuard: gives back what a mask protects after something was drawn.
//
//     if (guard.forbids(box)) return;
//     guard.protect(target, box);
//     ... draw ...
//     guard.restore(painter);
//
// A mask of one channel says how much of a pixel is protected: 255 comes back exactly, of 0 nothing
// comes back, and between them a pixel returns in proportion. Outside the mask's pixels its fill
// counts. (x, y) of the mask's image lies on pixel (x - offset, y - offset) of the target.
//
// The snapshot is a smart child of the target: it shares pages, and what is drawn into the target
// afterwards copies those that it changes. Pages that it didn't look at show the target as it is,
// so that a pixel between two protected boxes comes back as itself.
#pragma once

#include <cstdint>

#include "blending/paint/paint_ops.h"
#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

class MaskGuard {
  public:
    // One channel, or null for no mask.
    void setMask(ilImage* mask) { mask_ = Ref<ilImage>(mask); }
    void setOffset(std::int32_t x, std::int32_t y);
    [[nodiscard]] ilImage* mask() const { return mask_.get(); }
    // The first component of the mask's fill; 0 without a mask.
    [[nodiscard]] double fillValue() const;
    // The mask's pixels, in the target's coordinates. Empty without any.
    [[nodiscard]] ilTile area() const;

    // Whether all of the box lies where the mask is 255 by its fill.
    [[nodiscard]] bool forbids(const ilTile& box) const;
    // Keeps the box as it is now, beside what is kept already. False: it could not be kept, and
    // nothing may be drawn.
    [[nodiscard]] bool protect(ilImage* target, const ilTile& box);
    [[nodiscard]] bool isActive() const { return active_; }
    // Forgets what was protected.
    void reset();
    // Gives the protected boxes back through that painter, which must draw on the target, and
    // resets. The painter's state is as before.
    void restore(PaintOps& painter);
    // The same of one box, into another painter, without a reset.
    void layOver(PaintOps& painter, const ilTile& box) const;

  private:
    [[nodiscard]] ilTile regionOf(const ilTile& box) const;

    Ref<ilImage> mask_;
    std::int32_t x_ = 0, y_ = 0;
    Ref<ilSmartImage> snapshot_;
    ilTile protected_;
    bool active_ = false;
};

}  // namespace brushwork
