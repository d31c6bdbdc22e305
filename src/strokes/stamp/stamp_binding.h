// How a stamp reaches a blender: the mode's own numbers, the mask under a texture, the source.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "blending/core/generic_blender.h"
#include "brushwork/blend_mode_table.h"
#include "brushwork/brush_parameters.h"
#include "brushwork/ref.h"
#include "strokes/stamp/stamp_maker.h"

namespace brushwork::npc {

// Each channel rounded to a byte, red lowest. What is out of range becomes its bound.
[[nodiscard]] std::uint32_t packedColor(const std::array<float, 4>& color);

// Whether the mode's source is paint that the brush carries along and that stamps write to.
[[nodiscard]] bool carriesPaint(BlendModeId mode);

// The numbers that stay the same for a whole stroke. `blender` must be one of createBlender.
void setModeParameters(GenericBlender& blender, const BrushParameters& brush);
// Those of one stamp.
void setStampValues(GenericBlender& blender, float opacity, float flow);

// Images that stand in for the brush's colour. Without any, the brush's own counts.
struct StampSource {
    Ref<ilImage> high, low;  // the low bytes may be missing
    enum class Place {
        Layer,   // lies still at (x, y)
        Corner,  // at (x, y) from each stamp's corner
        Middle,  // its middle on each stamp's, whatever that one's size and turn
    } place = Place::Corner;
    std::int32_t x = 0, y = 0;

    [[nodiscard]] bool isGiven() const { return high || low; }
    // Where its corner lies for a stamp of this box.
    [[nodiscard]] std::int32_t left(const ilTile& stamp) const;
    [[nodiscard]] std::int32_t bottom(const ilTile& stamp) const;
};
// Binds it, or else the stamp's colour image, or else the colour.
void bindSource(GenericBlender& blender, const StampSource& source, const StampImages& stamp,
                std::uint32_t color);

// Whether the brush's stamps get the grain of a paper.
[[nodiscard]] bool hasTexture(const BrushParameters& brush);

// The mask of a stamp with the grain of the paper in it.
class TextureMask {
  public:
    TextureMask();
    ~TextureMask();

    // The stamp's own mask if the brush has no texture that is switched on, or memory is short.
    // Otherwise an image that is written anew for the next stamp. Borrowed.
    [[nodiscard]] ilSPMemoryImg* apply(const BrushParameters& brush, const StampImages& stamp,
                                       float strength);

  private:
    Ref<ilSPMemoryImg> image_;
    std::shared_ptr<GenericBlender> blender_;  // made when a texture is first met
};

}  // namespace brushwork::npc
