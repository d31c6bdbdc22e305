#include "undo/pnt_undo_shape_delete.h"

namespace brushwork {

PntUndoShapeDelete::PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas,
                                       std::int32_t layerId, LayerStack* stack, Layer* layer,
                                       std::int32_t shapeIndex, Shape* shape, Way moved,
                                       const char* primaryName)
    : PntUndoShape(canvases, canvas, layerId, stack, layer, shapeIndex, shape, primaryName),
      moved_(moved) {
    addKind("SidShapeDelete");
}

PntUndoShapeDelete::PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas,
                                       std::int32_t layerId, LayerStack* stack, Layer* layer,
                                       std::int32_t shapeIndex, Shape* shape,
                                       const char* primaryName)
    : PntUndoShapeDelete(canvases, canvas, layerId, stack, layer, shapeIndex, shape, Way(),
                         primaryName) {}

PntUndoShapeDelete::PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas, ByIndex place,
                                       LayerStack* stack, Layer* layer, std::int32_t shapeIndex,
                                       Shape* shape, const char* primaryName)
    : PntUndoShapeDelete(canvases, canvas, idOf(stack, place), stack, layer, shapeIndex, shape,
                         primaryName) {}

PntUndoShapeDelete::~PntUndoShapeDelete() = default;

void PntUndoShapeDelete::undo(bool* deferRedraw) {
    moveCurves(-moved_.dx, -moved_.dy);
    insert(deferRedraw);
}

void PntUndoShapeDelete::redo(bool* deferRedraw) {
    remove(deferRedraw);
    moveCurves(moved_.dx, moved_.dy);
}

std::size_t PntUndoShapeDelete::objectSize() const {
    return sizeof(PntUndoShapeDelete) + extraSize();
}

}  // namespace brushwork
