// FloatingTransform: what a layer keeps while it is being moved, scaled or bent with the result
// shown live.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

struct FloatingTransform {
    bool open = false;
    std::int32_t mode = 0, arg = 0;             // as given; used again when it is reopened
    Ref<ilImage> color, stencil;                // the layer's images from before
    Ref<ilImage> previewColor, previewStencil;  // working copies
    float offsetX = 0.0f, offsetY = 0.0f;       // the layer's offset at the start
    std::int32_t deltaX = 0, deltaY = 0;        // origin shift of the last resample
};

}  // namespace brushwork
