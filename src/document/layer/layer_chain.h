// LayerChain: the doubly linked list of layers that a stack and each group hold.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "document/layer/layer.h"

namespace brushwork {

struct LayerChain {
    Ref<Layer> first;       // the bottom; owns through next
    Layer* last = nullptr;  // the top
    std::int32_t count = 0;

    LayerChain() = default;
    LayerChain(const LayerChain&) = delete;
    LayerChain& operator=(const LayerChain&) = delete;
    ~LayerChain() { clear(); }

    // Above `below`, or at the bottom for null.
    void insertAbove(Layer& layer, Layer* below);
    // Takes it out of the list; the caller holds it if it shall live on. False: not in this list.
    bool remove(Layer& layer);
    // One by one from the bottom, so that long lists don't recurse.
    void clear();

    // Where a layer with `channels` goes that is wanted above `below`: a layer of four channels
    // never parts a paint layer from its masks and stencils, so it goes past those.
    [[nodiscard]] static Layer* pastAttached(Layer* below, const Layer& layer);
    // All members, groups after what they hold where `withMembers` asks for them.
    [[nodiscard]] std::int32_t total(bool withMembers) const;
    // 1-based; null and -1 for none.
    [[nodiscard]] Layer* at(std::int32_t index, bool withMembers) const;
    [[nodiscard]] std::int32_t indexOf(const Layer& layer, bool withMembers) const;
    [[nodiscard]] Layer* byId(std::int32_t id, bool withMembers) const;
};

// Calls visit(layer) for all layers of a list from the bottom up, groups after what they hold.
// Visit answers false to stop; then so does this.
bool eachLayer(const LayerChain& chain, const std::function<bool(Layer&)>& visit);

}  // namespace brushwork
