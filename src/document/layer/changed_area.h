// ChangedArea: what of the document an edit of a layer's pixels or place touches.
//
//     ChangedArea area(*this);
//     ... move, turn or replace the pixels ...
//     area.mark();
#pragma once

#include "document/layer/layer.h"

namespace brushwork {

class ChangedArea {
  public:
    // Notes where the layer's pixels are now.
    explicit ChangedArea(Layer& layer);
    // Touches the layer, and marks that area and the present one in the caches of the groups
    // around; all of them for a layer that covers what lies outside its box, too.
    void mark();

  private:
    void add();

    Layer& layer_;
    ilTile box_{0, 0, 0, 0, 0, 1};
    bool everywhere_ = false;
};

// Whether what nobody has painted shows: the fill isn't empty.
[[nodiscard]] bool coversGround(ilImage& image);
// Of a layer that isn't attenuated there, or of one in a group, at any depth.
[[nodiscard]] bool coversGround(Layer& layer);

}  // namespace brushwork
