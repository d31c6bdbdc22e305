// ShapeSource: a shape as its renderers see it.
#pragma once

#include <vector>

#include "brushwork/host_call_table.h"
#include "brushwork/il_tile.h"
#include "brushwork/shape_image_parms.h"
#include "shapes/shape_owner.h"

namespace brushwork {

class ShapeSource {
  public:
    ShapeSource(const ShapeSource&) = delete;
    ShapeSource& operator=(const ShapeSource&) = delete;

    // Null if the host has none; then there are no curves either.
    [[nodiscard]] virtual HostShape hostShape() const = 0;
    // The host's, for the call that asked.
    [[nodiscard]] virtual std::vector<HostCurve> curves() const = 0;
    // Where renderers leave their masks. Borrowed, never null.
    [[nodiscard]] virtual ShapeImageParms& parms() const = 0;
    [[nodiscard]] virtual bool isVisible() const = 0;
    // Null while the shape is in no layer.
    [[nodiscard]] virtual ShapeOwner* owner() const = 0;
    // False, and an empty box, if the shape draws nothing.
    [[nodiscard]] virtual bool bounds(ilTile& box) const = 0;

  protected:
    ShapeSource() = default;
    ~ShapeSource() = default;
};

}  // namespace brushwork
