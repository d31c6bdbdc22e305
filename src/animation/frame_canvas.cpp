#include "animation/frame_canvas.h"

namespace brushwork {

FrameCanvas::~FrameCanvas() {
    // A newer one of the same canvas may stand there by now.
    const auto kept = door_->kept.find(index_);
    if (kept != door_->kept.end()) {
        if (!kept->second.expired()) return;
        door_->kept.erase(kept);
    }
    if (!door_->paint || (origin_ == CanvasOrigin::Given && !deleted_)) return;
    const UndoPause pause(*door_->paint);
    door_->paint->closeCanvas(index_);
}

std::shared_ptr<FrameCanvas> keepCanvas(const std::shared_ptr<PaintDoor>& door, std::int32_t index,
                                        CanvasOrigin origin) {
    if (const auto kept = door->kept.find(index); kept != door->kept.end())
        if (std::shared_ptr<FrameCanvas> canvas = kept->second.lock()) return canvas;
    auto canvas = std::make_shared<FrameCanvas>(door, index, origin);
    door->kept[index] = canvas;
    return canvas;
}

}  // namespace brushwork
