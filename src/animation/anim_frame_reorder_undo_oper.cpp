#include "animation/anim_frame_reorder_undo_oper.h"

namespace brushwork {

AnimFrameReorderUndoOper::AnimFrameReorderUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                                   FrameListChange change,
                                                   std::vector<std::uint32_t> changed,
                                                   const Ref<AnimFrame>& frame)
    : AnimListUndoOper(std::move(timeline), std::move(change), frame),
      changed_(std::move(changed)) {}

AnimFrameReorderUndoOper::~AnimFrameReorderUndoOper() = default;

std::size_t AnimFrameReorderUndoOper::objectSize() const {
    return sizeof(AnimFrameReorderUndoOper) + extraSize();
}

void AnimFrameReorderUndoOper::undo(bool* deferRedraw) {
    put(Way::Undo, changed_, {}, deferRedraw);
}

void AnimFrameReorderUndoOper::redo(bool* deferRedraw) {
    put(Way::Redo, changed_, {}, deferRedraw);
}

}  // namespace brushwork
