// npc::MarkerColorlessBlender: a felt pen without ink that drags wet paint along.
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"

namespace brushwork::npc {

// Works on targets of two planes, through a mask or with an opacity below 1. The two sources are
// the high and low bytes of the paint that is carried, written in place; without both, nothing
// happens.
class MarkerColorlessBlender : public GenericBlender {
  public:
    MarkerColorlessBlender();

    void setOpacity(float value) override;
    // Meant for 0 to 1 each; 1 at first.
    void setStrength(float value);
    void setWetness(float value);
    [[nodiscard]] float getStrength() const { return strength_; }
    [[nodiscard]] float getWetness() const { return wetness_; }
    // 4096 for 1.
    [[nodiscard]] std::uint32_t wetness12() const { return wetness12_; }
    // What one stamp lays where its mask is full, of 65535. Follows opacity and strength.
    [[nodiscard]] std::uint32_t deposit() const { return deposit_; }

  protected:
    void installKernels(bool allowVector) override;

  private:
    void updateDeposit();

    float strength_ = 1.0F, wetness_ = 1.0F;
    std::uint32_t wetness12_ = 4096, deposit_ = 0;
};

}  // namespace brushwork::npc
