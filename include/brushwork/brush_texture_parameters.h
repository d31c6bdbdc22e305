// BrushTextureParameters: the paper grain of a brush.
//
//     const auto paper = makeRef<BrushTextureParameters>();
//     paper->setRandomOffset(true);
//     manager.setBrushTexture(paper, grain);
//
// A TextureGenerator turns it into the image that stamps are laid under.
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
    // Grey stays or changes over to its negative; only a change makes the generated image stale.
    void setInvert(bool on);
    // From each stroke on at another place, or no longer: then the offsets are 0 again.
    void setRandomOffset(bool on);
    // For a stroke that begins. With randomOffset and an image the pattern comes to lie anywhere
    // within one of its periods, by two values of the process's random sequence, x first; without
    // them nothing is drawn and the offsets stay.
    void drawOffset();

    // Whoever changes image, shift or scale sets `dirty`.
    Ref<ilImage> image;                     // grey; may be null
    std::int32_t offsetX = 0, offsetY = 0;  // where the pattern lies in the layer, in pixels
    float strength = 1.0f;                  // of a stamp that doesn't say
    float shiftX = 0.0f, shiftY = 0.0f;     // of the pattern, in pixels
    std::int32_t stretchMode = 1;           // this and the next three are only carried
    float value0 = 1.0f, value1 = 1.0f;
    std::int32_t contrast = 0;
    bool enabled = true;
    bool invert = false;                 // see setInvert
    bool randomOffset = false;           // a new offset for each stroke; see setRandomOffset
    bool dirty = true;                   // the generated image is out of date
    float scaleX = 1.0f, scaleY = 1.0f;  // of the pattern
};

}  // namespace brushwork
