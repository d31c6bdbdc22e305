#include "undo/canvas_redraw.h"

#include "document/layer/document_switches.h"
#include "document/layer/shape_layer.h"

namespace brushwork {

void redrawStack(LayerStack& stack) {
    if (documentSwitches().compositeCacheEnabled)
        stack.refreshDisplay(true);
    else
        stack.invalidateRect(stack.canvasBounds());
}

void redrawCanvas(UndoCanvases& canvases, std::int32_t canvas) {
    const std::int32_t before = canvases.currentIndex();
    canvases.makeCurrent(canvas);
    if (LayerStack* const stack = canvases.stackAt(canvas)) redrawStack(*stack);
    canvases.makeCurrent(before);
}

void shapesMoved(UndoCanvases& canvases, std::int32_t canvas, ShapeLayer& layer) {
    layer.setShapesDirty();
    layer.propagateChange(true);
    layer.markClipDirty(true);
    LayerStack* const stack = canvases.stackAt(canvas);
    if (!stack || stack->layerById(layer.id()) != &layer) return;
    stack->noteChange(&layer);
    stack::staleSide(stack->parts(), layer);
    if (layer.role() != LayerRole::Paint) stack->rebuildPaintMask();
    stack->invalidateRect(stack->canvasBounds());
}

void redrawOrDefer(UndoCanvases& canvases, std::int32_t canvas, bool* deferRedraw) {
    if (deferRedraw)
        *deferRedraw = true;
    else
        redrawCanvas(canvases, canvas);
}

}  // namespace brushwork
