// LayerParent: what a layer may ask of the group around it.
#pragma once

#include <functional>

#include "brushwork/il_tile.h"

namespace brushwork {

class Layer;

class LayerParent {
  public:
    // The group as a layer of the list that it stands in.
    [[nodiscard]] virtual Layer& asLayer() = 0;
    // Draws its members straight into whatever it is drawn into, and has no cache of its own.
    [[nodiscard]] virtual bool isPassThrough() const = 0;
    // The cache is out of date, in the box or (null) as a whole.
    virtual void markCache(const ilTile* box) = 0;
    // Its members from the bottom up, groups among them, not what those hold.
    virtual void eachMember(const std::function<void(Layer&)>& visit) = 0;

  protected:
    ~LayerParent() = default;
};

}  // namespace brushwork
