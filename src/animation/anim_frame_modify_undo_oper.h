// AnimFrameModifyUndoOper: a frame whose fields were changed.
#pragma once

#include <vector>

#include "animation/anim_undo_oper.h"

namespace brushwork {

class AnimFrameModifyUndoOper final : public AnimUndoOper {
  public:
    AnimFrameModifyUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before,
                            CanvasLayer after, std::uint32_t frameNumber,
                            const Ref<AnimFrame>& oldFrame, const Ref<AnimFrame>& newFrame);

  protected:
    ~AnimFrameModifyUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;

  private:
    void put(const AnimFrame& fields, bool* deferRedraw);

    std::uint32_t frameNumber_;
    Ref<AnimFrame> oldFrame_, newFrame_;
};

}  // namespace brushwork
