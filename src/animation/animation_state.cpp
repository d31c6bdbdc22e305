#include "animation/animation_state.h"

#include <algorithm>

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

// A listener may act on the animation, and leave or take others away, who may be gone by then.
template <class Call>
void AnimationState::tell(const Call& call) {
    for (FrameListener* const listener : std::vector<FrameListener*>(listeners)) {
        const bool stays =
            std::find(listeners.begin(), listeners.end(), listener) != listeners.end();
        if (stays && !listener->paused && !listener->suspended) call(*listener);
    }
}

void AnimationState::tellChanged(std::uint32_t number) {
    tell([&](FrameListener& listener) { listener.frameChanged(currentFrame, number); });
}

void AnimationState::tellCurrent() {
    tell([&](FrameListener& listener) { listener.currentFrameChanged(currentFrame); });
}

void AnimationState::tellSelected() {
    tell([&](FrameListener& listener) { listener.frameSelected(currentFrame); });
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
