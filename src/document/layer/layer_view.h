// LayerView: a layer's placed copy for display, and what it is made from.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "brushwork/transform_record.h"
#include "document/layer/view_levels.h"
#include "image/chain/il_image.h"

namespace brushwork {

struct LayerView {
    TransformRecord transform;
    Ref<ilImage> source;  // dropped by every change
    ViewLevels levels;
    Ref<ilImage> image;  // the last placed copy
    std::int32_t imageX = 0, imageY = 0;
    std::uint64_t changeCount = 0;
};

}  // namespace brushwork
