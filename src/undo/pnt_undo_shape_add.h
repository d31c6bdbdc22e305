// PntUndoShapeAdd and its mirror: a shape that went into a shape layer, or out of it.
#pragma once

#include "shapes/shape.h"
#include "undo/pnt_undo_layer.h"

namespace brushwork {

// What both share: a shape and its place.
class PntUndoShape : public PntUndoLayer {
  protected:
    // `shapeIndex`: the shape's 1-based place in its layer.
    PntUndoShape(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                 LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                 const char* primaryName);
    ~PntUndoShape() override;

  public:
    [[nodiscard]] std::size_t extraSize() const override;
    // Lets go of the shape, whatever the record's state.
    void archive(PntUndoDatabase& database) override;
    [[nodiscard]] Shape* shape() const { return shape_.get(); }
    [[nodiscard]] std::int32_t shapeIndex() const { return shapeIndex_; }

  protected:
    // Nothing while the layer is no shape layer, or after archiving.
    void insert(bool* deferRedraw);
    void remove(bool* deferRedraw);
    // Moves the host's curves of the shape, in layer pixels; nothing after archiving.
    void moveCurves(float dx, float dy);

  private:
    std::int32_t shapeIndex_;
    Ref<Shape> shape_;
};

class PntUndoShapeAdd final : public PntUndoShape {
  public:
    PntUndoShapeAdd(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                    LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                    const char* primaryName);
    PntUndoShapeAdd(UndoCanvases& canvases, std::int32_t canvas, ByIndex place, LayerStack* stack,
                    Layer* layer, std::int32_t shapeIndex, Shape* shape, const char* primaryName);

  protected:
    ~PntUndoShapeAdd() override;

  public:
    void undo(bool* deferRedraw) override { remove(deferRedraw); }
    void redo(bool* deferRedraw) override { insert(deferRedraw); }
    [[nodiscard]] std::size_t objectSize() const override;
};

}  // namespace brushwork
