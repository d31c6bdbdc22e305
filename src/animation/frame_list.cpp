#include "animation/frame_list.h"

#include <algorithm>

namespace brushwork {

bool FrameList::find(std::uint32_t number, std::size_t& place) const {
    const auto after = std::upper_bound(
        frames_.begin(), frames_.end(), number,
        [](std::uint32_t wanted, const auto& frame) { return wanted < frame->frameNumber; });
    if (after == frames_.begin()) return false;
    place = static_cast<std::size_t>(after - frames_.begin()) - 1;
    return true;
}

AnimFrame* FrameList::starting(std::uint32_t number) const {
    std::size_t place = 0;
    if (!find(number, place) || frames_[place]->frameNumber != number) return nullptr;
    return frames_[place].get();
}

void FrameList::setLast(std::uint32_t number) {
    last_ = frames_.empty() ? 0 : std::max(number, frames_.back()->frameNumber);
}

void FrameList::insert(const Ref<AnimFrame>& frame) {
    const auto after = std::upper_bound(
        frames_.begin(), frames_.end(), frame->frameNumber,
        [](std::uint32_t number, const auto& other) { return number < other->frameNumber; });
    frames_.insert(after, frame);
    last_ = std::max(last_, frames_.back()->frameNumber);
}

void FrameList::remove(std::size_t place) {
    if (place + 1 == frames_.size()) last_ = frames_.back()->frameNumber - 1;
    frames_.erase(frames_.begin() + static_cast<std::ptrdiff_t>(place));
    if (frames_.empty()) last_ = 0;
}

void FrameList::pullBack(std::size_t from) {
    for (std::size_t n = from; n < frames_.size(); ++n) --frames_[n]->frameNumber;
    --last_;
}

bool FrameList::hasRoom(std::uint32_t number) const {
    std::uint32_t free = number;
    std::size_t place = 0;
    if (find(number, place))
        for (; place < frames_.size() && frames_[place]->frameNumber == free; ++place) ++free;
    return free <= maxFrameNumber;
}

std::vector<std::uint32_t> FrameList::makeRoom(std::uint32_t number) {
    std::vector<std::uint32_t> touched;
    std::size_t place = 0;
    if (!find(number, place)) return touched;
    for (std::uint32_t taken = number;
         place < frames_.size() && frames_[place]->frameNumber == taken; ++place) {
        frames_[place]->frameNumber = ++taken;
        touched.push_back(taken);
    }
    last_ = std::max(last_, frames_.back()->frameNumber);
    return touched;
}

FrameListSnapshot FrameList::snapshot(std::uint32_t currentFrame) const {
    FrameListSnapshot kept;
    kept.frames = frames_;
    for (const Ref<AnimFrame>& frame : frames_) kept.numbers.push_back(frame->frameNumber);
    kept.currentFrame = currentFrame;
    kept.lastFrame = last_;
    return kept;
}

void FrameList::restore(const FrameListSnapshot& snapshot) {
    frames_ = snapshot.frames;
    for (std::size_t n = 0; n < frames_.size(); ++n) frames_[n]->frameNumber = snapshot.numbers[n];
    last_ = snapshot.lastFrame;
}

}  // namespace brushwork
