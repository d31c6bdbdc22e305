// AnimFrameSwitchUndoOper: another number that was shown.
#pragma once

#include <vector>

#include "animation/anim_undo_oper.h"

namespace brushwork {

class AnimFrameSwitchUndoOper final : public AnimUndoOper {
  public:
    AnimFrameSwitchUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before,
                            CanvasLayer after, std::uint32_t oldFrameNumber,
                            std::uint32_t newFrameNumber);

  protected:
    ~AnimFrameSwitchUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;

  private:
    std::uint32_t oldFrameNumber_, newFrameNumber_;
};

}  // namespace brushwork
