// npc::SmudgeBlender: a finger in wet paint.
//
//     smudge.setSource(pickupHigh, x, y, true);        // placed on the stamp, written in place
//     smudge.setSecondSource(pickupLow, x, y, true);
//     smudge.setPickup(0.05F);
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"

namespace brushwork::npc {

// Works on targets of two planes, through a mask or with an opacity below 1. The two sources are
// the high and low bytes of the paint that is carried; without both, nothing happens. Empty ones
// wipe.
class SmudgeBlender : public GenericBlender {
  public:
    SmudgeBlender();

    // How much of the canvas one stamp takes on, 0 to 1; the less, the farther old paint is
    // carried. 1 at first.
    void setPickup(float value);
    [[nodiscard]] float getPickup() const { return pickup_; }
    [[nodiscard]] std::uint32_t pickup16() const { return pickup16_; }

  protected:
    void installKernels(bool allowVector) override;

  private:
    float pickup_ = 1.0F;
    std::uint32_t pickup16_ = 65535;
};

}  // namespace brushwork::npc
