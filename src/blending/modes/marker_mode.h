// npc::MarkerBlender: a felt pen. Layers of its ink darken what is there.
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"

namespace brushwork::npc {

// Works on targets of two planes, through a mask or with an opacity below 1. The source is the ink:
// a constant colour or an image.
class MarkerBlender : public GenericBlender {
  public:
    MarkerBlender();

    void setOpacity(float value) override;
    // Meant for 0 to 1; 1 at first.
    void setStrength(float value);
    [[nodiscard]] float getStrength() const { return strength_; }
    [[nodiscard]] std::uint32_t strength16() const { return strength16_; }
    // What one stamp lays where its mask is full, of 65535. Follows opacity and strength, from a
    // fortieth to a quarter: a pen of no strength still shows, and one stamp never covers.
    [[nodiscard]] std::uint32_t deposit() const { return deposit_; }

  protected:
    void installKernels(bool allowVector) override;

  private:
    void updateDeposit();

    float strength_ = 1.0F;
    std::uint32_t strength16_ = 65535, deposit_ = 0;
};

}  // namespace brushwork::npc
