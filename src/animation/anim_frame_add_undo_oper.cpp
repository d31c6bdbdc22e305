#include "animation/anim_frame_add_undo_oper.h"

namespace brushwork {

AnimFrameAddUndoOper::AnimFrameAddUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                           FrameListChange change, const Ref<AnimFrame>& frame,
                                           std::vector<Ref<AnimFrame>> touched)
    : AnimListUndoOper(std::move(timeline), std::move(change), frame),
      touched_(std::move(touched)) {}

AnimFrameAddUndoOper::~AnimFrameAddUndoOper() = default;

std::size_t AnimFrameAddUndoOper::objectSize() const {
    return sizeof(AnimFrameAddUndoOper) + extraSize();
}

// Without a frame the record does nothing.
void AnimFrameAddUndoOper::putFrame(Way way, bool* deferRedraw) {
    if (!frame()) return;
    const Ref<AnimFrame> alone = frame();
    const std::uint32_t changed[] = {alone->frameNumber};
    if (touched_.empty())
        put(way, changed, {&alone, 1}, deferRedraw);
    else
        put(way, changed, touched_, deferRedraw);
}

void AnimFrameAddUndoOper::undo(bool* deferRedraw) {
    putFrame(Way::Undo, deferRedraw);
}

void AnimFrameAddUndoOper::redo(bool* deferRedraw) {
    putFrame(Way::Redo, deferRedraw);
}

}  // namespace brushwork
