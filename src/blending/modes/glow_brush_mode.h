// npc::GlowBrushBlender: a brush of light.
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"

namespace brushwork::npc {

// Glow through a mask, but on empty sources too. Its source is one image, filled with the brush's
// colour. Of a target of two planes it lights up the high bytes.
class GlowBrushBlender : public GenericBlender {
  public:
    GlowBrushBlender();

    // Kept for whoever asks; the light is as strong without. 1 at first.
    void setStrength(float value);
    [[nodiscard]] float getStrength() const { return strength_; }
    [[nodiscard]] std::uint32_t strength16() const { return strength16_; }

  protected:
    void installKernels(bool allowVector) override;

  private:
    float strength_ = 1.0F;
    std::uint32_t strength16_ = 65535;
};

}  // namespace brushwork::npc
