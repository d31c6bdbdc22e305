// The judgement on the mask of a climbing flood, and what is made of one that is noise.
#pragma once

#include <cstdint>

#include "fill/color_distance.h"
#include "fill/fill_surface.h"
#include "fill/flood_fill.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// Values of the mask in the box that differ by more than 128 from both their neighbours in their
// row, plus those of columns. A pixel at the box's edge has no two neighbours that way.
[[nodiscard]] std::int32_t countSpikes(FillSurface& mask, const FloodBox& box);
constexpr std::int32_t mostSpikes = 40;

// Takes back marks whose pixel in `source` is further off the target than the tolerance, then
// smooths the box of the mask. `maskSurface` lies over `mask`.
void revertToBasicFill(FillSurface& source, ilSmartImage& mask, FillSurface& maskSurface,
                       const FloodBox& box, const ColorTarget& target, std::int32_t tolerance);

}  // namespace brushwork
