// FrameListener: who hears of changes of frames.
#pragma once

#include <cstdint>
#include <span>

#include "brushwork/export.h"

namespace brushwork {

class BRUSHWORK_API FrameListener {
  public:
    // Slots, in this order.
    virtual ~FrameListener();
    // Another number is shown.
    virtual void currentFrameChanged(std::uint32_t number);
    // The frame at this number changed, came, went or moved; `shown` is the number being shown.
    virtual void frameChanged(std::uint32_t shown, std::uint32_t number);
    virtual void frameSelected(std::uint32_t number);

    // While either is set the listener hears nothing.
    bool paused = false, suspended = false;
};

}  // namespace brushwork
