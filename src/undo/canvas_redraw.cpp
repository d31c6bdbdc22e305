#include "undo/canvas_redraw.h"

#include "document/layer/document_switches.h"
#include "document/layer/shape_layer.h"
#include "foundation/host/host_calls.h"

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

void curvesChanged(UndoCanvases& canvases, Shape& shape) {
    shape.changed();
    for (std::int32_t canvas = 0; canvas < canvases.slotCount(); ++canvas) {
        LayerStack* const stack = canvases.stackAt(canvas);
        if (!stack) continue;
        static_cast<void>(eachLayer(stack->parts().list, [&](Layer& layer) {
            ShapeLayer* const shapes = ShapeLayer::from(&layer);
            bool shown = false;
            Shape* one = shapes ? shapes->shapeAt(ShapeLayer::bottomShape) : nullptr;
            for (; one; one = one->next()) {
                if (one != &shape && (!shape.hostShape() || one->hostShape() != shape.hostShape()))
                    continue;
                one->changed();
                shown = true;
            }
            if (shown) shapesMoved(canvases, canvas, *shapes);
            return true;
        }));
    }
}

void moveCurves(UndoCanvases& canvases, Shape& shape, float dx, float dy) {
    if (dx == 0.0f && dy == 0.0f) return;
    const double map[] = {1.0, 0.0, dx, 0.0, 1.0, dy};
    for (const HostCurve curve : shape.curves()) hostMapCurve(curve, map);
    curvesChanged(canvases, shape);
}

void redrawOrDefer(UndoCanvases& canvases, std::int32_t canvas, bool* deferRedraw) {
    if (deferRedraw)
        *deferRedraw = true;
    else
        redrawCanvas(canvases, canvas);
}

}  // namespace brushwork
