#include "animation/anim_frame_modify_undo_oper.h"

namespace brushwork {

AnimFrameModifyUndoOper::AnimFrameModifyUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                                 CanvasLayer before, CanvasLayer after,
                                                 std::uint32_t frameNumber,
                                                 const Ref<AnimFrame>& oldFrame,
                                                 const Ref<AnimFrame>& newFrame)
    : AnimUndoOper(std::move(timeline), before, after),
      frameNumber_(frameNumber),
      oldFrame_(oldFrame),
      newFrame_(newFrame) {}

AnimFrameModifyUndoOper::~AnimFrameModifyUndoOper() = default;

std::size_t AnimFrameModifyUndoOper::objectSize() const {
    return sizeof(AnimFrameModifyUndoOper) + extraSize();
}

// Unlike the other records this one needs a caller who redraws.
void AnimFrameModifyUndoOper::put(const AnimFrame& fields, bool* deferRedraw) {
    if (!deferRedraw) return;
    run(nullptr, [&](FrameTimeline& line) {
        AnimFrame* const shown = line.frameShowing(frameNumber_);
        if (!shown) return;
        shown->takeFields(fields);
        *deferRedraw = true;
        line.tellChanged(frameNumber_);
    });
}

void AnimFrameModifyUndoOper::undo(bool* deferRedraw) {
    put(*oldFrame_, deferRedraw);
}

void AnimFrameModifyUndoOper::redo(bool* deferRedraw) {
    put(*newFrame_, deferRedraw);
}

}  // namespace brushwork
