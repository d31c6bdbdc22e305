#include "animation/anim_frame_delete_undo_oper.h"

#include "animation/frame_canvas.h"

namespace brushwork {

AnimFrameDeleteUndoOper::AnimFrameDeleteUndoOper(std::weak_ptr<FrameTimeline> timeline,
                                                 FrameListChange change,
                                                 std::vector<std::uint32_t> changedOld,
                                                 std::vector<std::uint32_t> changedNew,
                                                 const Ref<AnimFrame>& removed)
    : AnimListUndoOper(std::move(timeline), std::move(change), {}),
      changedOld_(std::move(changedOld)),
      changedNew_(std::move(changedNew)),
      removed_(removed) {}

AnimFrameDeleteUndoOper::~AnimFrameDeleteUndoOper() = default;

std::size_t AnimFrameDeleteUndoOper::objectSize() const {
    return sizeof(AnimFrameDeleteUndoOper) + extraSize();
}

void AnimFrameDeleteUndoOper::undo(bool* deferRedraw) {
    if (removed_) removed_->canvas()->setDeleted(false);
    put(Way::Undo, changedOld_, {}, deferRedraw);
}

void AnimFrameDeleteUndoOper::redo(bool* deferRedraw) {
    if (removed_) removed_->canvas()->setDeleted(true);
    put(Way::Redo, changedNew_, {}, deferRedraw);
}

}  // namespace brushwork
