// PntUndoLayerStack: an edit of a canvas' structure. The record keeps the stack object itself, and
// the document goes on in a fresh copy that shares all pages.
#pragma once

#include "undo/pnt_undo_layer.h"

namespace brushwork {

class PntUndoLayerStack final : public PntUndoLayer {
  public:
    // Making the record puts a copy of the stack into the slot; made before the edit.
    PntUndoLayerStack(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                      LayerStack* stack, Layer* layer, const char* primaryName);
    // The stack of another slot has taken the canvas' place: undo puts back what stands in
    // `savedSlot` then. Nothing is copied or exchanged.
    PntUndoLayerStack(UndoCanvases& canvases, std::int32_t canvas, ByIndex place, LayerStack* stack,
                      Layer* layer, std::int32_t savedSlot, const char* primaryName);

  protected:
    ~PntUndoLayerStack() override;

  public:
    // Nothing at all while the host says that the document is gone.
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] std::size_t extraSize() const override;
    // Collapses the images of both stacks, unless undone.
    void archive(PntUndoDatabase& database) override;

    [[nodiscard]] LayerStack* savedStack() const { return savedStack_.get(); }
    [[nodiscard]] bool undone() const { return undone_; }

  private:
    void putBack(LayerStack& stack, bool* deferRedraw);

    Ref<LayerStack> savedStack_;
    std::int32_t savedSlot_ = -1;
    bool undone_ = false;
};

}  // namespace brushwork
