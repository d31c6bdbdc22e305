// LayerPlace: where a layer lies in its document.
#pragma once

#include <cstdint>

namespace brushwork {

struct LayerPlace {
    float offsetX = 0.0f, offsetY = 0.0f;   // document coordinates
    std::int32_t originX = 0, originY = 0;  // the canvas origin, handed down by the stack
    float pivotX = 0.0f, pivotY = 0.0f;
    bool pivotSet = false;  // else the middle of the content
};

}  // namespace brushwork
