// BrushTextureParameters: the paper grain of a brush.
#pragma once

#include <cstdint>

#include "brushwork/export.h"
#include "brushwork/ref.h"
#include "brushwork/reference_count.h"

namespace brushwork {

class ilImage;

// What a brush texture is made from. A value shared by reference.
class BRUSHWORK_API BrushTextureParameters final : public zn::ReferenceCount {
  public:
    BrushTextureParameters();

  protected:
    ~BrushTextureParameters() override;

  public:
    Ref<ilImage> image;                     // grey; may be null
    std::int32_t offsetX = 0, offsetY = 0;  // where the pattern lies in the layer, in pixels
    float strength = 1.0f;                  // of a stamp that doesn't say
    float shiftX = 0.0f, shiftY = 0.0f;     // of the pattern, in pixels
    std::int32_t stretchMode = 1;           // this and the next three are only carried
    float value0 = 1.0f, value1 = 1.0f;
    std::int32_t contrast = 0;
    bool enabled = true;
    bool invert = false;
    bool randomOffset = false;           // a new offset for each stroke
    bool dirty = true;                   // the generated image is out of date
    float scaleX = 1.0f, scaleY = 1.0f;  // of the pattern
};

}  // namespace brushwork
