#include "brushwork/paint_manager.h"

#include "facade/facade_state.h"

namespace brushwork {

PaintManagerState::PaintManagerState() : owned_(std::make_unique<FacadeState>()) {}

PaintManagerState::~PaintManagerState() = default;

PaintManager::PaintManager()
    : CanvasFamily(*owned_),
      LayerFamily(*owned_),
      OrderFamily(*owned_),
      AttributeFamily(*owned_),
      PixelFamily(*owned_),
      TransformFamily(*owned_),
      StrokeFamily(*owned_),
      BrushFamily(*owned_),
      SelectionFamily(*owned_),
      FillFamily(*owned_),
      ShapeFamily(*owned_),
      AdjustFamily(*owned_),
      QueryFamily(*owned_),
      UndoFamily(*owned_) {}

PaintManager::~PaintManager() {
    if (inStroke()) cancelStroke();
}

}  // namespace brushwork
