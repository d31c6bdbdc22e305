// Redrawing a canvas after undo or redo, or leaving that to who runs several records.
#pragma once

#include "undo/undo_canvases.h"

namespace brushwork {

// The canvas is made current, drawn whole, and the one before is current again.
void redrawCanvas(UndoCanvases& canvases, std::int32_t canvas);
// The stack itself, with both caches.
void redrawStack(LayerStack& stack);
// Shapes came into the layer or left it: it is drawn anew, and so is what it clips.
void shapesMoved(UndoCanvases& canvases, std::int32_t canvas, ShapeLayer& layer);
// The host's curves behind the shape changed: copies of it, in whatever canvas, show them too.
void curvesChanged(UndoCanvases& canvases, Shape& shape);
// Moves them, in layer pixels.
void moveCurves(UndoCanvases& canvases, Shape& shape, float dx, float dy);
// Sets the flag; without one redraws.
void redrawOrDefer(UndoCanvases& canvases, std::int32_t canvas, bool* deferRedraw);

}  // namespace brushwork
