// FacadeState: what the families of PaintManager share.
#pragma once

#include "facade/brush_state.h"
#include "facade/canvas_slots.h"
#include "facade/idle_work.h"
#include "facade/live_stroke.h"
#include "facade/modal_modes.h"
#include "facade/undo_switch.h"
#include "undo/undo_canvases.h"

namespace brushwork {

struct FacadeState final : UndoCanvases {
    FacadeState();
    FacadeState(const FacadeState&) = delete;
    FacadeState& operator=(const FacadeState&) = delete;
    ~FacadeState();

    CanvasSlots canvases;
    BrushState brush;
    ModalModes modal;
    UndoSwitch undo;
    LiveStroke stroke;
    IdleWork idle;
    std::int32_t selectionMode = 0;  // handed to each new stack

    // UndoCanvases
    [[nodiscard]] std::int32_t currentIndex() const override { return canvases.current; }
    void makeCurrent(std::int32_t canvas) override;
    [[nodiscard]] LayerStack* stackAt(std::int32_t canvas) const override;
    void replaceStack(LayerStack& stack, std::int32_t canvas) override;
    [[nodiscard]] std::int32_t slotCount() const override;
    [[nodiscard]] bool paintsOnStencil() const override { return brush.paintsOnStencil(); }
    [[nodiscard]] bool locateShape(std::int32_t shapeId, ShapePlace& place) const override;
    void scheduleIdle() override;

    // Restarts the idle timer sooner, after a stroke.
    void scheduleIdleAfterStroke();
    [[nodiscard]] LayerStack* current() const { return stackAt(activeOne); }
    // Of any canvas; null if there is none of this id.
    [[nodiscard]] LayerStack* stackOfLayer(std::int32_t id) const {
        return canvases.stackOfLayer(id, nullptr);
    }
    [[nodiscard]] Layer* layerById(std::int32_t id) const;

  private:
    void takeOver(StackParts& to, LayerStack& former) const;
    static void reopen(StackParts& to);
    [[nodiscard]] bool locateIn(std::int32_t canvas, std::int32_t shapeId, ShapePlace& place) const;
};

}  // namespace brushwork
