// FrameTimeline: what an undo record of frames may ask of the animation.
#pragma once

#include <cstdint>
#include <span>

#include "animation/frame_list.h"

namespace brushwork {

class FrameTimeline {
  public:
    virtual ~FrameTimeline() = default;

    virtual bool switchFrame(std::uint32_t number, bool undo, bool notify, bool preserveView,
                             std::int32_t canvas, std::int32_t layerId, bool commit,
                             bool keepLayer) = 0;
    // The one way by which records put a list back. The view of the present canvas is carried to
    // the touched frames; `changed` numbers are told to the listeners.
    virtual void restoreFrames(const FrameListSnapshot& snapshot, std::int32_t canvas,
                               std::int32_t layerId, std::span<const std::uint32_t> changed,
                               std::span<const Ref<AnimFrame>> touched) = 0;
    // The frame that shows at the number; null for none.
    [[nodiscard]] virtual AnimFrame* frameShowing(std::uint32_t number) const = 0;
    virtual void tellChanged(std::uint32_t number) = 0;
};

}  // namespace brushwork
