#include "animation/anim_undo_oper.h"

namespace brushwork {

AnimUndoOper::AnimUndoOper(std::weak_ptr<FrameTimeline> timeline, CanvasLayer before,
                           CanvasLayer after)
    : PntUndoOper("AnimFrameOper", true, false),
      timeline_(std::move(timeline)),
      before_(before),
      after_(after) {
    addKind("AnimFrameOper");
}

AnimUndoOper::~AnimUndoOper() = default;

std::int32_t AnimUndoOper::animDescribe() const {
    return 0;
}

std::size_t AnimUndoOper::objectSize() const {
    return sizeof(AnimUndoOper) + extraSize();
}

}  // namespace brushwork
