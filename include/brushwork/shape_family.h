// ShapeFamily: vector shapes in shape layers.
#pragma once

#include <cstdint>
#include <span>

#include "brushwork/export.h"
#include "brushwork/host_call_table.h"
#include "brushwork/ref.h"
#include "brushwork/shape_image_parms.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API ShapeFamily {
  public:
    // Into the active shape layer, or one that is made above the active layer. The kind is that of
    // the parms: 0 paint, 1 mask, 2 stencil, 3 warp. `shape` is the host's. The shape's id, or -1.
    std::int32_t addShape(std::int32_t kind, HostShape shape, const Ref<ShapeImageParms>& parms,
                          void* hostData = nullptr);
    bool deleteShape(std::int32_t shape, std::int32_t layerId = -2);
    bool deleteShapes(std::span<const std::int32_t> shapes);
    // By a distance in layer pixels.
    bool moveShape(std::int32_t shape, float dx, float dy);
    // The host changed curve or parms.
    bool shapeChanged(std::int32_t shape);
    [[nodiscard]] Ref<ShapeImageParms> shapeById(std::int32_t shape) const;
    [[nodiscard]] std::int32_t shapeCount(std::int32_t layerId = -2) const;

  protected:
    explicit ShapeFamily(FacadeState& state) : state_(state) {}
    ShapeFamily(const ShapeFamily&) = delete;
    ShapeFamily& operator=(const ShapeFamily&) = delete;
    ~ShapeFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
