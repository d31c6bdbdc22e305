// SelectionState: the selection layer and what follows from it.
#pragma once

#include <cstdint>
#include <optional>

#include "brushwork/host_call_table.h"
#include "brushwork/ref.h"
#include "document/layer/layer.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

struct SelectionState {
    Ref<Layer> layer;       // 1 channel, outside the list; 255 is selected
    std::int32_t mode = 0;  // 1: shown as a marching outline
    bool active = true;     // restricts painting
    bool changed = true;    // the outline must be computed anew
    float opacity = 0.5f;   // of the tint
    LayerColor color{0.724f, 0.427f, 0.396f, 1.0f};
    float maskOpacity = 0.5f;  // of mask and stencil layers, pushed to each
    LayerColor maskColor{1.0f, 0.0f, 0.0f, 1.0f};
    Ref<ilImage> outline;             // of the selection; null: not made
    std::int32_t phase = 0x7fffffff;  // of the marching outline, falling
    std::optional<HostTimerId> timer;
    // What restricts painting: 1 channel, document coordinates; 255 is free to paint. Null: no
    // restriction.
    Ref<ilImage> paintMask;
};

}  // namespace brushwork
