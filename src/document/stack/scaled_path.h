// ScaledPath: reduced composites around layers that are being transformed.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "document/layer/layer.h"
#include "image/chain/il_image.h"

namespace brushwork {

struct ScaledPath {
    Layer* start = nullptr;  // the first layer that is drawn between the two
    Layer* end = nullptr;    // behind the last one
    Ref<ilImage> below, above;
    std::int32_t belowX = 0, belowY = 0, aboveX = 0, aboveY = 0;
    std::int32_t mode = 0;  // filter with which they were made
    Ref<ilImage> result;    // the last frame
};

}  // namespace brushwork
