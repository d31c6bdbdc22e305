// AnimFrameReorderUndoOper: a frame that was moved to another number.
#pragma once

#include <vector>

#include "animation/anim_undo_oper.h"

namespace brushwork {

class AnimFrameReorderUndoOper final : public AnimUndoOper {
  public:
    AnimFrameReorderUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before,
                             CanvasLayer after, FrameListSnapshot oldFrames,
                             FrameListSnapshot newFrames, std::vector<std::uint32_t> changed,
                             const Ref<AnimFrame>& frame);

  protected:
    ~AnimFrameReorderUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] std::int32_t animDescribe() const override;

  private:
    FrameListSnapshot oldFrames_, newFrames_;
    std::vector<std::uint32_t> changed_;
    Ref<AnimFrame> frame_;
};

}  // namespace brushwork
