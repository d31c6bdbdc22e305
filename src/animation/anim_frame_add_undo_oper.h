// AnimFrameAddUndoOper: a frame that was added.
#pragma once

#include <vector>

#include "animation/anim_undo_oper.h"

namespace brushwork {

class AnimFrameAddUndoOper final : public AnimUndoOper {
  public:
    AnimFrameAddUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before,
                         CanvasLayer after, FrameListSnapshot oldFrames,
                         FrameListSnapshot newFrames, const Ref<AnimFrame>& frame,
                         std::vector<Ref<AnimFrame>> touched);

  protected:
    ~AnimFrameAddUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] bool wasUndone() const { return wasUndone_; }
    [[nodiscard]] std::int32_t animDescribe() const override;

  private:
    void put(const FrameListSnapshot& frames, CanvasLayer place, bool undone, bool* deferRedraw);

    FrameListSnapshot oldFrames_, newFrames_;
    Ref<AnimFrame> frame_;
    bool wasUndone_ = false;
    std::vector<Ref<AnimFrame>> touched_;  // none: the frame alone
};

}  // namespace brushwork
