// ilColorAdjustImg: a memory image that adjusts the colours of its own pixels.
//
//     const Ref<ilColorAdjustImg> image(new ilColorAdjustImg(width, height, 4));
//     ... write the pixels ...
//     Ref<ToneAnalysis> slot;  // kept as long as the same pixels are adjusted
//     if (image->apply(&parm, slot)) ... write them back ...
#pragma once

#include "brushwork/color_adjust_parm.h"
#include "brushwork/ref.h"
#include "image/filter/tone_analysis.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

class ilColorAdjustImg : public ilSPMemoryImg {
  public:
    static const ClassDescriptor descriptor;

    using ilSPMemoryImg::ilSPMemoryImg;

  protected:
    ~ilColorAdjustImg() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;

    // Adjusts the pixels in place, in a wrapped buffer too. True if they were; false for a null
    // parm, an image without four interleaved channels of bytes, a kind or numbers that change
    // nothing, and without memory for the analysis: every byte is then as it was. Pixels of alpha 0
    // stay but where a selection is shown.
    //
    // Adjustments by tone read hue, saturation and value from the slot's analysis, if that is of as
    // many pixels as this image, whatever the pixels are now; else the slot gets a new one. Other
    // kinds leave the slot alone.
    bool apply(const ColorAdjustParm* parm, Ref<ToneAnalysis>& slot);
};

}  // namespace brushwork
