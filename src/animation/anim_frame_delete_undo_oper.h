// AnimFrameDeleteUndoOper: a number that was taken out.
#pragma once

#include <vector>

#include "animation/anim_undo_oper.h"

namespace brushwork {

class AnimFrameDeleteUndoOper final : public AnimUndoOper {
  public:
    AnimFrameDeleteUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before,
                            CanvasLayer after, FrameListSnapshot oldFrames,
                            FrameListSnapshot newFrames, std::vector<std::uint32_t> changedOld,
                            std::vector<std::uint32_t> changedNew, const Ref<AnimFrame>& removed);

  protected:
    ~AnimFrameDeleteUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] bool wasUndone() const { return wasUndone_; }

  private:
    FrameListSnapshot oldFrames_, newFrames_;
    std::vector<std::uint32_t> changedOld_, changedNew_;
    bool wasUndone_ = false;
    Ref<AnimFrame> removed_;  // null: a number of a hold was taken out
};

}  // namespace brushwork
