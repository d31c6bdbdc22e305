// WetBuffers: the live stroke's images, laid over the colour until the stroke ends.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

// Places are in the layer's own pixels.
struct WetBuffers {
    Ref<ilImage> image;
    std::int32_t x = 0, y = 0;
    std::int32_t blend = 0;  // mode of the wet image over the colour
    float opacity = 1.0f;
    Ref<ilImage> mask;  // coverage: restricts the wet image
    std::int32_t maskX = 0, maskY = 0;
    Ref<ilImage> texture;  // combined into the wet image first
    std::int32_t textureX = 0, textureY = 0;
    std::int32_t textureBlend = 0;
};

}  // namespace brushwork
