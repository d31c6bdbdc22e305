// PntUndoShapeArray: shapes of several layers and canvases at once.
#pragma once

#include <vector>

#include "brushwork/pnt_undo_oper.h"
#include "shapes/shape.h"
#include "undo/undo_canvases.h"

namespace brushwork {

struct ShapeUndoEntry {
    std::int32_t shapeId = -1, canvasIndex = -1, layerIndex = -1;
    Ref<LayerStack> stack;
    Ref<Layer> layer;
    std::int32_t shapeIndex = -1;  // 1-based
    Ref<Shape> shape;

    friend bool operator==(const ShapeUndoEntry&, const ShapeUndoEntry&) = default;
};

class PntUndoShapeArray : public PntUndoOper {
  protected:
    PntUndoShapeArray(UndoCanvases& canvases, std::vector<ShapeUndoEntry> entries,
                      const char* primaryName);
    ~PntUndoShapeArray() override;

  public:
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] std::size_t extraSize() const override;
    // This record if the other has equal entries in the same order.
    [[nodiscard]] Ref<PntUndoOper> match(const PntUndoOper& other) override;
    [[nodiscard]] const std::vector<ShapeUndoEntry>& entries() const { return entries_; }

  protected:
    [[nodiscard]] UndoCanvases& canvases() const { return canvases_; }
    std::vector<ShapeUndoEntry> entries_;

  private:
    UndoCanvases& canvases_;
};

}  // namespace brushwork
