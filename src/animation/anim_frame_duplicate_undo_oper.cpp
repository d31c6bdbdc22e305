#include "animation/anim_frame_duplicate_undo_oper.h"

namespace brushwork {

AnimFrameDuplicateUndoOper::AnimFrameDuplicateUndoOper(std::weak_ptr<FrameTimeline> timeline,
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

AnimFrameDuplicateUndoOper::~AnimFrameDuplicateUndoOper() = default;

std::size_t AnimFrameDuplicateUndoOper::objectSize() const {
    return sizeof(AnimFrameDuplicateUndoOper) + extraSize();
}

std::int32_t AnimFrameDuplicateUndoOper::animDescribe() const {
    return frame_ ? frame_->id() : 0;
}

void AnimFrameDuplicateUndoOper::undo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        line.restoreFrames(oldFrames_, before().canvas, before().layer, changed_, {&frame_, 1});
        wasUndone_ = true;
    });
}

void AnimFrameDuplicateUndoOper::redo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        line.restoreFrames(newFrames_, after().canvas, after().layer, changed_, {&frame_, 1});
        wasUndone_ = false;
    });
}

}  // namespace brushwork
