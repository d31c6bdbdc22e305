// AnimFrameDuplicateUndoOper: a frame that was duplicated.
#pragma once

#include <vector>

#include "animation/anim_list_undo_oper.h"

namespace brushwork {

class AnimFrameDuplicateUndoOper final : public AnimListUndoOper {
  public:
    AnimFrameDuplicateUndoOper(std::weak_ptr<FrameTimeline> timeline, FrameListChange change,
                               std::vector<std::uint32_t> changed, const Ref<AnimFrame>& frame);

  protected:
    ~AnimFrameDuplicateUndoOper() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;

  private:
    std::vector<std::uint32_t> changed_;
};

}  // namespace brushwork
