#include "undo/pnt_undo_shape_delete.h"

namespace brushwork {

PntUndoShapeDelete::PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas,
                                       std::int32_t layerId, LayerStack* stack, Layer* layer,
                                       std::int32_t shapeIndex, Shape* shape,
                                       const char* primaryName)
    : PntUndoShape(canvases, canvas, layerId, stack, layer, shapeIndex, shape, primaryName) {
    addKind("SidShapeDelete");
}

PntUndoShapeDelete::PntUndoShapeDelete(UndoCanvases& canvases, std::int32_t canvas, ByIndex place,
                                       LayerStack* stack, Layer* layer, std::int32_t shapeIndex,
                                       Shape* shape, const char* primaryName)
    : PntUndoShapeDelete(canvases, canvas, idOf(stack, place), stack, layer, shapeIndex, shape,
                         primaryName) {}

PntUndoShapeDelete::~PntUndoShapeDelete() = default;

std::size_t PntUndoShapeDelete::objectSize() const {
    return sizeof(PntUndoShapeDelete) + extraSize();
}

}  // namespace brushwork
