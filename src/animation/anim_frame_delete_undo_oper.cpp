#include "animation/anim_frame_delete_undo_oper.h"

#include "animation/frame_canvas.h"

namespace brushwork {

AnimFrameDeleteUndoOper::AnimFrameDeleteUndoOper(
    std::weak_ptr<FrameTimeline> timeline, CanvasLayer before, CanvasLayer after,
    FrameListSnapshot oldFrames, FrameListSnapshot newFrames, std::vector<std::uint32_t> changedOld,
    std::vector<std::uint32_t> changedNew, const Ref<AnimFrame>& removed)
    : AnimUndoOper(std::move(timeline), before, after),
      oldFrames_(std::move(oldFrames)),
      newFrames_(std::move(newFrames)),
      changedOld_(std::move(changedOld)),
      changedNew_(std::move(changedNew)),
      removed_(removed) {}

AnimFrameDeleteUndoOper::~AnimFrameDeleteUndoOper() = default;

std::size_t AnimFrameDeleteUndoOper::objectSize() const {
    return sizeof(AnimFrameDeleteUndoOper) + extraSize();
}

void AnimFrameDeleteUndoOper::undo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        if (removed_) removed_->canvas()->setDeleted(false);
        line.restoreFrames(oldFrames_, before().canvas, before().layer, changedOld_, {});
        wasUndone_ = true;
    });
}

void AnimFrameDeleteUndoOper::redo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        if (removed_) removed_->canvas()->setDeleted(true);
        line.restoreFrames(newFrames_, after().canvas, after().layer, changedNew_, {});
        wasUndone_ = false;
    });
}

}  // namespace brushwork
