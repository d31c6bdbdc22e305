#include "animation/anim_list_undo_oper.h"

namespace brushwork {

AnimListUndoOper::AnimListUndoOper(std::weak_ptr<FrameTimeline> timeline, FrameListChange change,
                                   const Ref<AnimFrame>& frame)
    : AnimUndoOper(std::move(timeline), change.before, change.after),
      oldFrames_(std::move(change.oldFrames)),
      newFrames_(std::move(change.newFrames)),
      frame_(frame) {}

AnimListUndoOper::~AnimListUndoOper() = default;

std::int32_t AnimListUndoOper::animDescribe() const {
    return frame_ ? frame_->id() : 0;
}

void AnimListUndoOper::put(Way way, std::span<const std::uint32_t> changed,
                           std::span<const Ref<AnimFrame>> touched, bool* deferRedraw) {
    run(deferRedraw, [&](FrameTimeline& line) {
        const CanvasLayer place = way == Way::Undo ? before() : after();
        line.restoreFrames(way == Way::Undo ? oldFrames_ : newFrames_, place.canvas, place.layer,
                           changed, touched);
        wasUndone_ = way == Way::Undo;
    });
}

}  // namespace brushwork
