// UndoCanvases: what an undo record may ask of the facade.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "document/stack/layer_stack.h"

namespace brushwork {

class Shape;
class ShapeLayer;

class UndoCanvases {
  public:
    // -1 while there is none.
    [[nodiscard]] virtual std::int32_t currentIndex() const = 0;
    // Without a word to the host.
    virtual void makeCurrent(std::int32_t canvas) = 0;
    // -2: the current one. Null for a wrong index or an empty slot.
    [[nodiscard]] virtual LayerStack* stackAt(std::int32_t canvas) const = 0;
    // Puts a saved stack into the slot: handle and view move over to it, and the surface of the one
    // before is released. Modal modes are closed.
    virtual void replaceStack(LayerStack& stack, std::int32_t canvas) = 0;
    [[nodiscard]] virtual std::int32_t slotCount() const = 0;
    // The stroke mode is one that paints on the stencil.
    [[nodiscard]] virtual bool paintsOnStencil() const = 0;
    struct ShapePlace {
        std::int32_t canvas = -1, layerIndex = -1, shapeIndex = -1;
        LayerStack* stack = nullptr;
        ShapeLayer* layer = nullptr;
        Shape* shape = nullptr;
    };
    // False: no canvas holds the shape.
    [[nodiscard]] virtual bool locateShape(std::int32_t shapeId, ShapePlace& place) const = 0;
    virtual void scheduleIdle() = 0;

  protected:
    ~UndoCanvases() = default;
};

}  // namespace brushwork
