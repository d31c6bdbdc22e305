// AnimFrame: one frame of an animation: a whole canvas, shown from a frame number on.
#pragma once

#include <cstdint>
#include <memory>

#include "brushwork/export.h"
#include "brushwork/image_ref.h"
#include "brushwork/ref.h"
#include "brushwork/resource.h"

namespace brushwork {

class FrameCanvas;

// Frames are numbered from 1 to this.
inline constexpr std::uint32_t maxFrameNumber = 1000;

class BRUSHWORK_API AnimFrame : public Resource {
  public:
    // Keeps the canvas open as long as it lives.
    explicit AnimFrame(std::shared_ptr<FrameCanvas> canvas);

  protected:
    ~AnimFrame() override;

  public:
    // 1, 2, 3 ... in the order of construction.
    [[nodiscard]] std::int32_t id() const { return id_; }
    // Of the PaintManager; -1: none.
    [[nodiscard]] std::int32_t canvasIndex() const;
    [[nodiscard]] const std::shared_ptr<FrameCanvas>& canvas() const { return canvas_; }
    void setCanvas(std::shared_ptr<FrameCanvas> canvas) { canvas_ = std::move(canvas); }
    // All but id and number from another; its canvas, too.
    void takeFields(const AnimFrame& other);
    [[nodiscard]] Ref<AnimFrame> copy() const;

    ImageRef thumbnail;
    std::int32_t thumbnailLayer = -1;
    std::int32_t hostFields[5] = {};  // the host's, as the rest below
    bool thumbnailValid = false;
    bool isKey = false;
    std::uint32_t frameNumber = 1;  // the first number at which the frame shows
    std::int32_t hostValue1 = 0, hostValue2 = 0;
    std::int32_t hostValue3 = 1, hostValue4 = 4;
    std::int32_t hostHandle = 0;
    std::int32_t hostId = -1;

  private:
    std::int32_t id_;
    std::shared_ptr<FrameCanvas> canvas_;
};

}  // namespace brushwork
