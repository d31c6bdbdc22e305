// DoodleFloodFillOperation: the fill for sketches and photographs. It follows the ramps of soft
// lines up to their crest, so that no pale rim stays beside them, and looks at its own result: a
// mask that came out as noise is cut back to what is within the tolerance, and smoothed.
//
//     DoodleFloodFillOperation doodle(rectangle, extent);
//     doodle.run(x, y, 0.1f, *picture);
//     doodle.applyColour(packColor(1, 0, 0, 1), *picture);
//
// One thread. Nothing is reported.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "fill/color_distance.h"
#include "fill/flood_fill.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

class DoodleFloodFillOperation {
  public:
    // The rectangle of the image in which seeds lie. The fill may go 2 pixels past its low edges
    // and 4 past its high ones, as far as the mask's extent goes.
    DoodleFloodFillOperation(const ilTile& rectangle, const ilTile& maskExtent);

    // Makes the mask anew, from a seed that is moved into the rectangle. One that lies past where
    // the fill may go does nothing. The tolerance is 0 to 1; the image has 1 or 4 channels.
    void run(std::int32_t x, std::int32_t y, float tolerance, ilImage& image);
    // Paints the image in a packed colour through the mask; a grey image takes alpha for its value.
    void applyColour(std::uint32_t rgba, ilImage& image);

    // Has the next runs take their mask for noise.
    void setForceFallback(bool force) { forceFallback_ = force; }
    // One channel, at the image's coordinates.
    [[nodiscard]] const Ref<ilSmartImage>& mask() const { return mask_; }
    // The box of all that is marked; empty if nothing is.
    [[nodiscard]] const FloodBox& dirty() const { return dirty_; }

  private:
    Ref<ilSmartImage> mask_;
    FloodBox clip_;
    FloodBox rectangle_;
    bool forceFallback_ = false;
    FloodBox dirty_;
    ColorTarget target_;
    std::int32_t tolerance_ = 0;
};

}  // namespace brushwork
