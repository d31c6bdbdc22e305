// ilConvolutionImg: a memory image that filters its own pixels, to sharpen or to blur.
//
//     const Ref<ilConvolutionImg> image(new ilConvolutionImg(width, height, 4));
//     ... write the pixels ...
//     image->convolve(ConvolutionKernel(-1.0f, radius, 0.33333334f));
#pragma once

#include <cstdint>

#include "image/filter/convolution_kernel.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

class ilConvolutionImg : public ilSPMemoryImg {
  public:
    static const ClassDescriptor descriptor;

    using ilSPMemoryImg::ilSPMemoryImg;

  protected:
    ~ilConvolutionImg() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;

    // Replaces the pixels by filtered ones, in a new buffer that the image owns; a buffer that it
    // only wrapped keeps what it held. A sharpness of exactly -1 blurs, any other takes the
    // kernel's weights and leaves a band of half the kernel's side as it was. Works on bytes: four
    // channels, or rows of one byte a pixel, as which any other count is taken.
    //
    // Answers ImageOk; ImageUnusable without pixels, without memory or for a kernel without
    // weights; ImageNotAllowed for other types than bytes. The image is unchanged then.
    std::int32_t convolve(const ConvolutionKernel& kernel);
};

}  // namespace brushwork
