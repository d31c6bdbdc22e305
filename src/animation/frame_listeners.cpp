#include "brushwork/frame_listeners.h"

namespace brushwork {

FrameListener::~FrameListener() = default;

void FrameListener::currentFrameChanged(std::uint32_t) {}

void FrameListener::frameChanged(std::uint32_t, std::uint32_t) {}

void FrameListener::frameSelected(std::uint32_t) {}

}  // namespace brushwork
