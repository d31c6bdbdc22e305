// AnimFrameDeleteUndoOper: a number that was taken out.
#pragma once

#include <vector>

#include "animation/anim_list_undo_oper.h"

namespace brushwork {

class AnimFrameDeleteUndoOper final : public AnimListUndoOper {
  public:
    AnimFrameDeleteUndoOper(std::weak_ptr<FrameTimeline> timeline, FrameListChange change,
                            std::vector<std::uint32_t> changedOld,
                            std::vector<std::uint32_t> changedNew, const Ref<AnimFrame>& removed);

  protected:
    ~AnimFrameDeleteUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;

  private:
    std::vector<std::uint32_t> changedOld_, changedNew_;
    Ref<AnimFrame> removed_;  // null: a number of a hold was taken out
};

}  // namespace brushwork
