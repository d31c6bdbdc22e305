// CanvasSlots: the open canvases, one a slot.
#pragma once

#include <cstdint>
#include <vector>

#include "brushwork/ref.h"
#include "document/stack/layer_stack.h"

namespace brushwork {

struct CanvasSlots {
    static constexpr std::size_t firstCapacity = 512;

    std::vector<Ref<LayerStack>> slots{firstCapacity};
    std::int32_t current = noLayer;
    std::int32_t open = 0;

    // The first empty slot; without one there are half as many more from then on.
    [[nodiscard]] std::int32_t freeSlot();
    // -2: the current one. Null for what isn't there.
    [[nodiscard]] LayerStack* stackAt(std::int32_t index) const;
    // -2 becomes the current index.
    [[nodiscard]] std::int32_t resolve(std::int32_t index) const;
    // Of the layer: -2 the current stack; else the first that holds it. Null and -1 for none.
    [[nodiscard]] LayerStack* stackOfLayer(std::int32_t layerId, std::int32_t* index) const;
};

}  // namespace brushwork
