// npc::PaintBlender, npc::SolidColorPaintBlender: brush strokes that build up to a level, the flow.
//
//     paint.setFlow(0.3F);      // no pixel gets more of the colour than this, however many stamps
//     paint.setOpacity(0.1F);   // how fast it gets there
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"

namespace brushwork::npc {

// What the two have in common.
class FlowBlender : public GenericBlender {
  public:
    // Slot 11 of the virtual operations. Meant for 0 to 1, not clamped; 1 at first.
    virtual void setFlow(float value);
    [[nodiscard]] float getFlow() const { return flow_; }
    // As kernels read it: 65535 for 1.
    [[nodiscard]] std::uint32_t flow16() const { return flow16_; }

  protected:
    explicit FlowBlender(std::int32_t mode);

  private:
    float flow_ = 1.0F;
    std::uint32_t flow16_ = 65535;
};

// Lays colour over what is there. Only through a mask or with an opacity below 1.
class PaintBlender : public FlowBlender {
  public:
    PaintBlender();

  protected:
    void installKernels(bool allowVector) override;
};

// Raises each channel toward the colour and never lowers one. Without a mask a target of bytes
// rises at once to the level; of a target of two planes then only the high bytes do.
class SolidColorPaintBlender : public FlowBlender {
  public:
    SolidColorPaintBlender();

  protected:
    void installKernels(bool allowVector) override;
};

}  // namespace brushwork::npc
