// Draws a picture as a WarpSpline deforms it.
#pragma once

#include <cstdint>

#include "image/smart/il_smart_image.h"
#include "image/work/sampling_kernels.h"
#include "shapes/warp_spline.h"

namespace brushwork {

// Pixel (0, 0) of the image lies at (x, y) of the target. It is only read and isn't the target.
struct WarpPicture {
    ilSmartImage* image = nullptr;
    std::int32_t x = 0, y = 0;
};

// Puts the deformed picture in place of what the target shows in the box, cell by cell of the grid,
// and leaves alone the cells that nothing moves in. False without memory, and for images whose
// channels differ; what was drawn by then stays.
bool renderWarp(const WarpSpline& spline, const WarpPicture& picture, SampleMode filter,
                ilSmartImage& target, const ilTile& box);

}  // namespace brushwork
