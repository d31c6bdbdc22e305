// ImageBlender: composes pictures onto an image, for callers that don't want to know about factors.
//
//     const Ref<ImageBlender> blender(new ImageBlender(target));
//     blender->setMode(ImageBlender::Over);
//     blender->blend(0, 0, width, height, PaintSource::of(picture));
#pragma once

#include <cstddef>
#include <cstdint>

#include "blending/paint/paint_ops.h"
#include "brushwork/ref.h"
#include "brushwork/resource.h"

namespace brushwork {

class ImageBlender : public Resource {
  public:
    enum Mode : std::int32_t {
        Copy = 0,  // and any other number
        Over = 1,
        Under = 2,
        KeepInside = 3,   // the target, where the source has alpha
        KeepOutside = 4,  // the target, where the source has none
    };

    // Holds the target. Copies at first.
    explicit ImageBlender(ilImage* target);

  protected:
    ~ImageBlender() override;

  public:
    void setMode(std::int32_t mode);
    // As PaintOps::rect_copy without a zoom.
    std::int32_t blend(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                       const PaintSource& source, const PaintFormat& format = {},
                       std::size_t rows = 0);
    [[nodiscard]] BlendFactors factors() const { return ops_->blendFactors(); }

  private:
    Ref<PaintOps> ops_;
};

}  // namespace brushwork
