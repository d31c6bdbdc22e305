#include "animation/anim_frame_reorder_undo_oper.h"

namespace brushwork {

AnimFrameReorderUndoOper::AnimFrameReorderUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                                   CanvasLayer before, CanvasLayer after,
                                                   FrameListSnapshot oldFrames,
                                                   FrameListSnapshot newFrames,
                                                   std::vector<std::uint32_t> changed,
                                                   const Ref<AnimFrame>& frame)
    : AnimUndoOper(std::move(timeline), before, after),
      oldFrames_(std::move(oldFrames)),
      newFrames_(std::move(newFrames)),
      changed_(std::move(changed)),
      frame_(frame) {}

AnimFrameReorderUndoOper::~AnimFrameReorderUndoOper() = default;

std::size_t AnimFrameReorderUndoOper::objectSize() const {
    return sizeof(AnimFrameReorderUndoOper) + extraSize();
}

std::int32_t AnimFrameReorderUndoOper::animDescribe() const {
    return frame_ ? frame_->id() : 0;
}

void AnimFrameReorderUndoOper::undo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        line.restoreFrames(oldFrames_, before().canvas, before().layer, changed_, {});
    });
}

void AnimFrameReorderUndoOper::redo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        line.restoreFrames(newFrames_, after().canvas, after().layer, changed_, {});
    });
}

}  // namespace brushwork
