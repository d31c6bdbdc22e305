// AnimUndoOper: an edit of the frame list as an undo record.
#pragma once

#include <cstdint>
#include <memory>

#include "animation/frame_timeline.h"
#include "brushwork/pnt_undo_oper.h"

namespace brushwork {

// A canvas and the layer that was active in it; -2 for the current ones.
struct CanvasLayer {
    std::int32_t canvas = -2, layer = -2;
};

class AnimUndoOper : public PntUndoOper {
  protected:
    // Does nothing once the animation is gone.
    AnimUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before, CanvasLayer after);
    ~AnimUndoOper() override;

  public:
    // Slot behind PntUndoOper's: the id of the frame that the record is about; 0 for none.
    [[nodiscard]] virtual std::int32_t animDescribe() const;
    [[nodiscard]] std::size_t objectSize() const override;

    [[nodiscard]] CanvasLayer before() const { return before_; }
    [[nodiscard]] CanvasLayer after() const { return after_; }

  protected:
    // Does the work on the timeline and sets the flag: what is to be drawn comes with the switch of
    // frames. The work may end a live edit, which files a record, whereupon a host may drop this
    // one: it lives on until the work is done.
    template <class Work>
    void run(bool* deferRedraw, const Work& work) {
        const Ref<AnimUndoOper> self(this);
        const std::shared_ptr<FrameTimeline> timeline = timeline_.lock();
        if (!timeline) return;
        work(*timeline);
        if (deferRedraw) *deferRedraw = true;
    }

  private:
    std::weak_ptr<FrameTimeline> timeline_;
    CanvasLayer before_, after_;
};

}  // namespace brushwork
