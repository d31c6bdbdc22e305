#include "brushwork/anim_frame.h"

#include <algorithm>

#include "animation/frame_canvas.h"

namespace brushwork {
namespace {

std::int32_t lastFrameId = 0;

}  // namespace

AnimFrame::AnimFrame(std::shared_ptr<FrameCanvas> canvas)
    : id_(++lastFrameId), canvas_(std::move(canvas)) {}

AnimFrame::~AnimFrame() = default;

std::int32_t AnimFrame::canvasIndex() const {
    return canvas_ ? canvas_->index() : -1;
}

void AnimFrame::takeFields(const AnimFrame& other) {
    canvas_ = other.canvas_;
    thumbnail = other.thumbnail;
    thumbnailLayer = other.thumbnailLayer;
    std::copy(std::begin(other.hostFields), std::end(other.hostFields), hostFields);
    thumbnailValid = other.thumbnailValid;
    isKey = other.isKey;
    hostValue1 = other.hostValue1;
    hostValue2 = other.hostValue2;
    hostValue3 = other.hostValue3;
    hostValue4 = other.hostValue4;
    hostHandle = other.hostHandle;
    hostId = other.hostId;
}

Ref<AnimFrame> AnimFrame::copy() const {
    const Ref<AnimFrame> frame(new AnimFrame(canvas_));
    frame->takeFields(*this);
    frame->frameNumber = frameNumber;
    return frame;
}

}  // namespace brushwork
