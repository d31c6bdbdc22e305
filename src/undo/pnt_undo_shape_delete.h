// PntUndoShapeDelete: a shape that left its layer; made just before.
#pragma once

#include "undo/pnt_undo_shape_add.h"

namespace brushwork {

class PntUndoShapeDelete final : public PntUndoShape {
  public:
    PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                       LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                       const char* primaryName);
    PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas, ByIndex place,
                       LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                       const char* primaryName);

  protected:
    ~PntUndoShapeDelete() override;

  public:
    void undo(bool* deferRedraw) override { insert(deferRedraw); }
    void redo(bool* deferRedraw) override { remove(deferRedraw); }
    [[nodiscard]] std::size_t objectSize() const override;
};

}  // namespace brushwork
