// LiveFill: a flood fill whose tolerance can still be changed.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "document/layer/layer.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

struct LiveFill {
    bool live = false;  // isFloodFilling
    Ref<Layer> layer;
    Ref<ilSmartImage> image;            // of the layer, that is filled: its colour or its stencil
    Ref<ilSmartImage> original;         // the image from before; shares its pages
    std::int32_t seedX = 0, seedY = 0;  // layer pixels
    std::array<float, 4> color{};       // red, green, blue, alpha
    ilTile bounds{0, 0, 0, 0, 0, 1};    // changed by the last fill, layer pixels; outlives it

    // What was filled stays.
    void end() {
        const ilTile last = bounds;
        *this = LiveFill();
        bounds = last;
    }
};

}  // namespace brushwork
