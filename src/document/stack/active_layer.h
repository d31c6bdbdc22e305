// ActiveLayer: the layer that tools work on.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "document/layer/layer.h"

namespace brushwork {

struct ActiveLayer {
    Ref<Layer> layer;
    std::int32_t indexCache = -1;  // members counted; -1: stale
    bool hideOthers = false;       // switching leaves only the active layer visible
};

}  // namespace brushwork
