#include "brushwork/animation_manager.h"

#include <algorithm>

#include "animation/animation_state.h"
#include "foundation/services/log.h"

namespace brushwork {

AnimationManager::AnimationManager(PaintManager& paint)
    : state_(std::make_shared<AnimationState>(paint)) {}

AnimationManager::~AnimationManager() = default;

bool AnimationManager::addFrame(std::uint32_t number, std::int32_t canvas,
                                const ImageRef& thumbnail, bool undo, bool notify,
                                std::int32_t layerId) {
    return state_->addFrame(number, canvas, thumbnail, undo, notify, layerId);
}

bool AnimationManager::deleteFrame(std::uint32_t number, bool undo) {
    return state_->deleteFrame(number, undo);
}

bool AnimationManager::duplicateFrame(std::uint32_t number, bool undo) {
    return state_->duplicateFrame(number, undo);
}

bool AnimationManager::reorderFrames(std::uint32_t from, std::uint32_t to, bool undo) {
    return state_->reorderFrames(from, to, undo);
}

bool AnimationManager::modifyFrame(std::uint32_t number, const AnimFrame& fields, bool undo) {
    return state_->modifyFrame(number, fields, undo);
}

bool AnimationManager::switchFrame(std::uint32_t number, bool undo, bool notify, bool preserveView,
                                   std::int32_t canvas, std::int32_t layerId, bool commit,
                                   bool keepLayer) {
    return state_->switchFrame(number, undo, notify, preserveView, canvas, layerId, commit,
                               keepLayer);
}

bool AnimationManager::findFrame(std::uint32_t number, std::size_t& place) const {
    return state_->list.find(state_->resolve(number), place);
}

bool AnimationManager::numberOccupied(std::uint32_t number) const {
    return state_->list.starting(state_->resolve(number)) != nullptr;
}

bool AnimationManager::canInsertAt(std::uint32_t number) const {
    return state_->canInsertAt(state_->resolve(number));
}

bool AnimationManager::canDuplicate(std::uint32_t number) const {
    return state_->canDuplicate(number);
}

void AnimationManager::dumpFrames() const {
    for (const Ref<AnimFrame>& frame : state_->list.frames())
        log("\n#%dframe: index = %d.", static_cast<int>(frame->frameNumber), frame->canvasIndex());
}

std::int32_t AnimationManager::currentCanvas() const {
    return state_->baseCanvas ? state_->baseCanvas->canvasIndex() : -1;
}

std::size_t AnimationManager::frameCount() const {
    return state_->list.frames().size();
}

Ref<AnimFrame> AnimationManager::frameAt(std::size_t place) const {
    return place < frameCount() ? state_->list.frames()[place] : Ref<AnimFrame>();
}

std::uint32_t AnimationManager::currentFrame() const {
    return state_->currentFrame;
}

std::uint32_t AnimationManager::lastFrame() const {
    return state_->list.last();
}

bool AnimationManager::setLastFrame(std::uint32_t number, bool undo) {
    return state_->setLastFrame(number, undo);
}

bool AnimationManager::holdsCanvas(std::int32_t canvas) const {
    const auto kept = state_->door->kept.find(canvas);
    return kept != state_->door->kept.end() && !kept->second.expired();
}

void AnimationManager::addListener(FrameListener& listener) {
    removeListener(listener);
    state_->listeners.push_back(&listener);
}

void AnimationManager::removeListener(FrameListener& listener) {
    std::erase(state_->listeners, &listener);
}

}  // namespace brushwork
