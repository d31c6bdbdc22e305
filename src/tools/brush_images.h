// Images that brushes are made of: tips and paper grains, computed.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork::tools {

// An ellipse for the tip of a brush, as wide as the image and `roundness` as high (0 to 1), turned
// by degrees and with a rim that softens over `softness` of its radius (0 to 1). 1 channel.
[[nodiscard]] Ref<ilSPMemoryImg> ellipseTip(float roundness, float degrees, float softness);

// Paper with grains of about so many pixels, which repeats without a seam. 1 channel.
[[nodiscard]] Ref<ilSPMemoryImg> paperGrain(float grain, std::uint32_t seed);

}  // namespace brushwork::tools
