// ShapeFamily: vector shapes in shape layers.
//
// A shape has an id that stays its own through undo and redo; a copy of its layer has shapes of
// other ids. Its curves are the host's: they must last while the shape or an undo record of it
// does. False, and nothing changes, for the id of no shape and while a stroke is open.
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
    // `layerId` isn't asked: the shape's id tells.
    bool deleteShape(std::int32_t shape, std::int32_t layerId = -2);
    // As one undo record, of whatever canvases they are; ids of no shape are left out.
    bool deleteShapes(std::span<const std::int32_t> shapes);
    // By a distance in layer pixels: its curves are moved through the host's mapCurve, which undo
    // calls the other way.
    bool moveShape(std::int32_t shape, float dx, float dy);
    // The host changed curve or parms: all copies of the shape are drawn anew. Makes no undo
    // record; a host that takes such a change back says so here, too.
    bool shapeChanged(std::int32_t shape);
    // The shape's own, to be changed before shapeChanged. Null for no shape.
    [[nodiscard]] Ref<ShapeImageParms> shapeById(std::int32_t shape) const;
    // 0 for a layer that holds no shapes.
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
