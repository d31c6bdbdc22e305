// AnimFrameDuplicateUndoOper: a frame that was duplicated.
#pragma once

#include <vector>

#include "animation/anim_undo_oper.h"

namespace brushwork {

class AnimFrameDuplicateUndoOper final : public AnimUndoOper {
  public:
    AnimFrameDuplicateUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before,
                               CanvasLayer after, FrameListSnapshot oldFrames,
                               FrameListSnapshot newFrames, std::vector<std::uint32_t> changed,
                               const Ref<AnimFrame>& frame);

  protected:
    ~AnimFrameDuplicateUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] bool wasUndone() const { return wasUndone_; }
    [[nodiscard]] std::int32_t animDescribe() const override;

  private:
    FrameListSnapshot oldFrames_, newFrames_;
    std::vector<std::uint32_t> changed_;
    bool wasUndone_ = false;
    Ref<AnimFrame> frame_;
};

}  // namespace brushwork
