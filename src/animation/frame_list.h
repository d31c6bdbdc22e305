// FrameList: frames by their numbers, with holds between them.
#pragma once

#include <cstdint>
#include <vector>

#include "brushwork/anim_frame.h"
#include "brushwork/ref.h"

namespace brushwork {

// What undo puts back: the frames, their timing, and the number that was shown.
struct FrameListSnapshot {
    std::vector<Ref<AnimFrame>> frames;
    std::vector<std::uint32_t> numbers;  // one a frame: the same frames may stand elsewhere by now
    std::uint32_t currentFrame = 1;
    std::uint32_t lastFrame = 0;
};

class FrameList {
  public:
    [[nodiscard]] const std::vector<Ref<AnimFrame>>& frames() const { return frames_; }
    [[nodiscard]] bool isEmpty() const { return frames_.empty(); }
    // The last frame at or below the number.
    [[nodiscard]] bool find(std::uint32_t number, std::size_t& place) const;
    [[nodiscard]] AnimFrame* starting(std::uint32_t number) const;
    [[nodiscard]] std::uint32_t last() const { return last_; }
    // Never below the number of the last frame.
    void setLast(std::uint32_t number);

    // In its sorted place.
    void insert(const Ref<AnimFrame>& frame);
    // `last` falls to the highest number still in use if the frame was the last: the one before it,
    // where the frame before holds on as long as it did.
    void remove(std::size_t place);
    // The frames from this place on go down by one.
    void pullBack(std::size_t from);
    // Makes room at a number: the frame that starts there and those behind it, up to the first gap,
    // go up by one. The numbers where they then start.
    std::vector<std::uint32_t> makeRoom(std::uint32_t number);
    // Whether makeRoom would keep all numbers within bounds.
    [[nodiscard]] bool hasRoom(std::uint32_t number) const;

    [[nodiscard]] FrameListSnapshot snapshot(std::uint32_t currentFrame) const;
    void restore(const FrameListSnapshot& snapshot);

  private:
    std::vector<Ref<AnimFrame>> frames_;
    std::uint32_t last_ = 0;
};

}  // namespace brushwork
