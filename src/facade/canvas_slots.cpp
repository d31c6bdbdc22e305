#include "facade/canvas_slots.h"

#include <algorithm>

namespace brushwork {

std::int32_t CanvasSlots::freeSlot() {
    const auto empty = std::find_if(slots.begin(), slots.end(),
                                    [](const Ref<LayerStack>& stack) { return !stack; });
    const auto index = static_cast<std::int32_t>(empty - slots.begin());
    if (empty == slots.end()) slots.resize(slots.size() + slots.size() / 2);
    return index;
}

std::int32_t CanvasSlots::resolve(std::int32_t index) const {
    return index == activeOne ? current : index;
}

LayerStack* CanvasSlots::stackAt(std::int32_t index) const {
    index = resolve(index);
    if (index < 0 || static_cast<std::size_t>(index) >= slots.size()) return nullptr;
    return slots[static_cast<std::size_t>(index)].get();
}

LayerStack* CanvasSlots::stackOfLayer(std::int32_t layerId, std::int32_t* index) const {
    if (index) *index = noLayer;
    if (layerId == activeOne) {
        if (index) *index = current;
        return stackAt(current);
    }
    if (layerId < 0) return nullptr;
    // Copies of a canvas have layers of the same ids: the one in front is meant.
    if (LayerStack* const front = stackAt(current); front && front->layerById(layerId)) {
        if (index) *index = current;
        return front;
    }
    for (std::size_t n = 0; n < slots.size(); ++n) {
        if (!slots[n] || !slots[n]->layerById(layerId)) continue;
        if (index) *index = static_cast<std::int32_t>(n);
        return slots[n].get();
    }
    return nullptr;
}

}  // namespace brushwork
