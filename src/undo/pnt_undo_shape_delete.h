// PntUndoShapeDelete: a shape that left its layer; made just before.
//
// One that goes back in elsewhere carries the way that its curves went; a PntUndoShapeAdd in the
// same combination tells of where it is then.
#pragma once

#include "undo/pnt_undo_shape_add.h"

namespace brushwork {

class PntUndoShapeDelete final : public PntUndoShape {
  public:
    struct Way {
        float dx = 0.0f, dy = 0.0f;  // layer pixels
    };
    PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                       LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                       const char* primaryName);
    PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                       LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                       Way moved, const char* primaryName);
    PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas, ByIndex place,
                       LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                       const char* primaryName);

  protected:
    ~PntUndoShapeDelete() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;

  private:
    Way moved_;
};

}  // namespace brushwork
