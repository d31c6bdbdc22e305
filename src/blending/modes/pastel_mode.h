// npc::PastelBlender: chalk whose dust mixes with the paper.
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"

namespace brushwork::npc {

// Works on targets of two planes, through a mask or with an opacity below 1. The two sources are
// the high and low bytes of the dust that is carried, written in place; without both, nothing
// happens.
class PastelBlender : public GenericBlender {
  public:
    PastelBlender();

    // Whole numbers given as floats, cut and bounded to 0 to 65535, which is what they are at
    // first.
    void setPickup(float value);     // how fast the dust follows what it is rubbed on
    void setCanvasMix(float value);  // what is there, against the stick's colour on it
    void setColorLoad(float value);  // how much of the stick's colour bare paper takes
    // Of the stick; red lowest, alpha highest. Opaque black at first.
    void setPaintColor(std::uint32_t color) { paintColor_ = color; }
    [[nodiscard]] std::uint32_t pickup() const { return pickup_; }
    [[nodiscard]] std::uint32_t canvasMix() const { return canvasMix_; }
    [[nodiscard]] std::uint32_t colorLoad() const { return colorLoad_; }
    [[nodiscard]] std::uint32_t paintColor() const { return paintColor_; }

  protected:
    void installKernels(bool allowVector) override;

  private:
    std::uint32_t pickup_ = 65535, canvasMix_ = 65535, colorLoad_ = 65535;
    std::uint32_t paintColor_ = 0xFF000000;
};

}  // namespace brushwork::npc
