// AnimFrameAddUndoOper: a frame that was added.
#pragma once

#include <vector>

#include "animation/anim_list_undo_oper.h"

namespace brushwork {

class AnimFrameAddUndoOper final : public AnimListUndoOper {
  public:
    AnimFrameAddUndoOper(std::weak_ptr<FrameTimeline> timeline, FrameListChange change,
                         const Ref<AnimFrame>& frame, std::vector<Ref<AnimFrame>> touched);

  protected:
    ~AnimFrameAddUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;

  private:
    void putFrame(Way way, bool* deferRedraw);

    std::vector<Ref<AnimFrame>> touched_;  // none: the frame alone
};

}  // namespace brushwork
