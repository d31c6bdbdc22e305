#include "animation/animation_state.h"

#include "brushwork/pnt_undo_database.h"

namespace brushwork {

AnimationState::AnimationState(PaintManager& manager)
    : paint(manager), door(std::make_shared<PaintDoor>()) {
    door->paint = &manager;
}

// Canvases of frames stay open: the manager's owner closes them.
AnimationState::~AnimationState() {
    door->paint = nullptr;
}

AnimFrame* AnimationState::frameShowing(std::uint32_t number) const {
    std::size_t place = 0;
    return list.find(number, place) ? list.frames()[place].get() : nullptr;
}

void AnimationState::tellChanged(std::uint32_t number) {
    for (FrameListener* listener : std::vector<FrameListener*>(listeners))
        if (!listener->paused && !listener->suspended) listener->frameChanged(currentFrame, number);
}

void AnimationState::tellCurrent() {
    for (FrameListener* listener : std::vector<FrameListener*>(listeners))
        if (!listener->paused && !listener->suspended) listener->currentFrameChanged(currentFrame);
}

void AnimationState::tellSelected() {
    for (FrameListener* listener : std::vector<FrameListener*>(listeners))
        if (!listener->paused && !listener->suspended) listener->frameSelected(currentFrame);
}

CanvasLayer AnimationState::present() const {
    return {paint.currentCanvas(), paint.activeLayerId()};
}

FrameListChange AnimationState::change(CanvasLayer before, FrameListSnapshot old) const {
    return {before, present(), std::move(old), list.snapshot(currentFrame)};
}

bool AnimationState::records(bool undo) const {
    return undo && paint.undoActive() && undoDatabase() != nullptr;
}

}  // namespace brushwork
