// AnimListUndoOper: an edit that changed which frames there are, or when they show.
#pragma once

#include <span>

#include "animation/anim_undo_oper.h"

namespace brushwork {

struct FrameListChange {
    CanvasLayer before, after;
    FrameListSnapshot oldFrames, newFrames;
};

class AnimListUndoOper : public AnimUndoOper {
  protected:
    // `frame` is the one that the record is about; none where it is about numbers alone.
    AnimListUndoOper(std::weak_ptr<FrameTimeline> timeline, FrameListChange change,
                     const Ref<AnimFrame>& frame);
    ~AnimListUndoOper() override;

    enum class Way { Undo, Redo };
    // Puts the list back as it was, or as it became.
    void put(Way way, std::span<const std::uint32_t> changed,
             std::span<const Ref<AnimFrame>> touched, bool* deferRedraw);
    [[nodiscard]] const Ref<AnimFrame>& frame() const { return frame_; }

  public:
    [[nodiscard]] bool wasUndone() const { return wasUndone_; }
    [[nodiscard]] std::int32_t animDescribe() const override;

  private:
    FrameListSnapshot oldFrames_, newFrames_;
    Ref<AnimFrame> frame_;
    bool wasUndone_ = false;
};

}  // namespace brushwork
