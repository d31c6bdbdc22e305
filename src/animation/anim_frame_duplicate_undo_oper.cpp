#include "animation/anim_frame_duplicate_undo_oper.h"

namespace brushwork {

AnimFrameDuplicateUndoOper::AnimFrameDuplicateUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                                       FrameListChange change,
                                                       std::vector<std::uint32_t> changed,
                                                       const Ref<AnimFrame>& frame)
    : AnimListUndoOper(std::move(timeline), std::move(change), frame),
      changed_(std::move(changed)) {}

AnimFrameDuplicateUndoOper::~AnimFrameDuplicateUndoOper() = default;

std::size_t AnimFrameDuplicateUndoOper::objectSize() const {
    return sizeof(AnimFrameDuplicateUndoOper) + extraSize();
}

void AnimFrameDuplicateUndoOper::undo(bool* deferRedraw) {
    put(Way::Undo, changed_, {&frame(), 1}, deferRedraw);
}

void AnimFrameDuplicateUndoOper::redo(bool* deferRedraw) {
    put(Way::Redo, changed_, {&frame(), 1}, deferRedraw);
}

}  // namespace brushwork
