#include "animation/anim_frame_switch_undo_oper.h"

namespace brushwork {

AnimFrameSwitchUndoOper::AnimFrameSwitchUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                                 CanvasLayer before, CanvasLayer after,
                                                 std::uint32_t oldFrameNumber,
                                                 std::uint32_t newFrameNumber)
    : AnimUndoOper(std::move(timeline), before, after),
      oldFrameNumber_(oldFrameNumber),
      newFrameNumber_(newFrameNumber) {}

AnimFrameSwitchUndoOper::~AnimFrameSwitchUndoOper() = default;

std::size_t AnimFrameSwitchUndoOper::objectSize() const {
    return sizeof(AnimFrameSwitchUndoOper) + extraSize();
}

void AnimFrameSwitchUndoOper::undo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        line.switchFrame(oldFrameNumber_, false, true, true, before().canvas, before().layer, true,
                         true);
    });
}

void AnimFrameSwitchUndoOper::redo(bool* deferRedraw) {
    run(deferRedraw, [this](FrameTimeline& line) {
        line.switchFrame(newFrameNumber_, false, true, true, after().canvas, after().layer, true,
                         true);
    });
}

}  // namespace brushwork
