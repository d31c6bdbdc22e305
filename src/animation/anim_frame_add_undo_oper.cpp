#include "animation/anim_frame_add_undo_oper.h"

namespace brushwork {

AnimFrameAddUndoOper::AnimFrameAddUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                           CanvasLayer before, CanvasLayer after,
                                           FrameListSnapshot oldFrames, FrameListSnapshot newFrames,
                                           const Ref<AnimFrame>& frame,
                                           std::vector<Ref<AnimFrame>> touched)
    : AnimUndoOper(std::move(timeline), before, after),
      oldFrames_(std::move(oldFrames)),
      newFrames_(std::move(newFrames)),
      frame_(frame),
      touched_(std::move(touched)) {}

AnimFrameAddUndoOper::~AnimFrameAddUndoOper() = default;

std::size_t AnimFrameAddUndoOper::objectSize() const {
    return sizeof(AnimFrameAddUndoOper) + extraSize();
}

std::int32_t AnimFrameAddUndoOper::animDescribe() const {
    return frame_ ? frame_->id() : 0;
}

// Without a frame the record does nothing.
void AnimFrameAddUndoOper::put(const FrameListSnapshot& frames, CanvasLayer place, bool undone,
                               bool* deferRedraw) {
    if (!frame_) return;
    run(deferRedraw, [&](FrameTimeline& line) {
        const std::vector<Ref<AnimFrame>> alone{frame_};
        const std::uint32_t changed[] = {frame_->frameNumber};
        line.restoreFrames(frames, place.canvas, place.layer, changed,
                           touched_.empty() ? alone : touched_);
        wasUndone_ = undone;
    });
}

void AnimFrameAddUndoOper::undo(bool* deferRedraw) {
    put(oldFrames_, before(), true, deferRedraw);
}

void AnimFrameAddUndoOper::redo(bool* deferRedraw) {
    put(newFrames_, after(), false, deferRedraw);
}

}  // namespace brushwork
