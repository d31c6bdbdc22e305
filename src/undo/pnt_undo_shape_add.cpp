#include "undo/pnt_undo_shape_add.h"

#include "document/layer/shape_layer.h"
#include "undo/canvas_redraw.h"

namespace brushwork {

PntUndoShape::PntUndoShape(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                           LayerStack* stack, Layer* layer, std::int32_t shapeIndex, Shape* shape,
                           const char* primaryName)
    : PntUndoLayer(canvases, canvas, layerId, stack, layer, primaryName),
      shapeIndex_(shapeIndex),
      shape_(shape) {}

PntUndoShape::~PntUndoShape() = default;

std::size_t PntUndoShape::extraSize() const {
    return PntUndoLayer::extraSize() + sizeof(Shape);
}

void PntUndoShape::archive(PntUndoDatabase&) {
    shape_.reset();
}

void PntUndoShape::insert(bool* deferRedraw) {
    ShapeLayer* const shapes = ShapeLayer::from(layer());
    if (!shapes || !shape_) return;
    shapes->addShape(*shape_, shapeIndex_ - 1);
    shapesMoved(canvases(), canvasIndex(), *shapes);
    redrawOrDefer(canvases(), canvasIndex(), deferRedraw);
}

void PntUndoShape::remove(bool* deferRedraw) {
    ShapeLayer* const shapes = ShapeLayer::from(layer());
    if (!shapes || !shape_) return;
    shapes->removeShape(*shape_);
    shapesMoved(canvases(), canvasIndex(), *shapes);
    redrawOrDefer(canvases(), canvasIndex(), deferRedraw);
}

void PntUndoShape::moveCurves(float dx, float dy) {
    if (shape_) brushwork::moveCurves(canvases(), *shape_, dx, dy);
}

PntUndoShapeAdd::PntUndoShapeAdd(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                                 LayerStack* stack, Layer* layer, std::int32_t shapeIndex,
                                 Shape* shape, const char* primaryName)
    : PntUndoShape(canvases, canvas, layerId, stack, layer, shapeIndex, shape, primaryName) {
    addKind("SidShapeAdd");
}

PntUndoShapeAdd::PntUndoShapeAdd(UndoCanvases& canvases, std::int32_t canvas, ByIndex place,
                                 LayerStack* stack, Layer* layer, std::int32_t shapeIndex,
                                 Shape* shape, const char* primaryName)
    : PntUndoShapeAdd(canvases, canvas, idOf(stack, place), stack, layer, shapeIndex, shape,
                      primaryName) {}

PntUndoShapeAdd::~PntUndoShapeAdd() = default;

std::size_t PntUndoShapeAdd::objectSize() const {
    return sizeof(PntUndoShapeAdd) + extraSize();
}

}  // namespace brushwork
