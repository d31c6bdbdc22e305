#include "blending/paint/image_blender.h"

#include "blending/paint/soft_paint_ops.h"

namespace brushwork {

ImageBlender::ImageBlender(ilImage* target) : ops_(new PaintOps(target)) {
    ops_->setChild(Ref<PaintOps>(new SoftPaintOps(target)).get());
}

ImageBlender::~ImageBlender() = default;

void ImageBlender::setMode(std::int32_t mode) {
    BlendFactors factors = pairCopy;
    switch (mode) {
        case Over: factors = pairOver; break;
        case Under: factors = pairUnder; break;
        case KeepInside: factors = pairKeepInside; break;
        case KeepOutside: factors = pairKeepOutside; break;
        default: break;
    }
    ops_->setBlendFactors(factors.source, factors.target);
}

std::int32_t ImageBlender::blend(std::int32_t x, std::int32_t y, std::int32_t width,
                                 std::int32_t height, const PaintSource& source,
                                 const PaintFormat& format, std::size_t rows) {
    return ops_->rect_copy(x, y, width, height, source, format, rows, 1.0F, 1.0F);
}

}  // namespace brushwork
