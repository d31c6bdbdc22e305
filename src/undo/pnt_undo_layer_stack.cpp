#include "undo/pnt_undo_layer_stack.h"

#include <algorithm>

#include "brushwork/pnt_undo_database.h"
#include "document/layer/document_switches.h"
#include "foundation/host/host_canvas.h"
#include "undo/canvas_redraw.h"
#include "undo/pnt_undo_combo.h"

namespace brushwork {
namespace {

bool isAbout(const PntUndoOper* record, const LayerStack* stack) {
    if (const auto* const combo = dynamic_cast<const PntUndoCombo*>(record))
        return std::any_of(combo->children().begin(), combo->children().end(),
                           [&](const auto& child) { return isAbout(child.get(), stack); });
    const auto* const one = dynamic_cast<const PntUndoLS*>(record);
    return one && one->stack() == stack;
}

}  // namespace

PntUndoLayerStack::PntUndoLayerStack(UndoCanvases& canvases, std::int32_t canvas,
                                     std::int32_t layerId, LayerStack* stack, Layer* layer,
                                     const char* primaryName)
    : PntUndoLayer(canvases, canvas, layerId, stack, layer, primaryName) {
    addKind("SidLayerStack");
    if (!stack) return;
    savedStack_ = Ref<LayerStack>(new LayerStack(*stack));
    canvases.replaceStack(*savedStack_, canvasIndex());
}

PntUndoLayerStack::PntUndoLayerStack(UndoCanvases& canvases, std::int32_t canvas, ByIndex place,
                                     LayerStack* stack, Layer* layer, std::int32_t savedSlot,
                                     const char* primaryName)
    : PntUndoLayer(canvases, canvas, idOf(stack, place), stack, layer, primaryName),
      savedStack_(stack),
      savedSlot_(savedSlot) {
    addKind("SidLayerStack");
}

PntUndoLayerStack::~PntUndoLayerStack() = default;

std::size_t PntUndoLayerStack::objectSize() const {
    return sizeof(PntUndoLayerStack) + extraSize();
}

std::size_t PntUndoLayerStack::extraSize() const {
    return PntUndoLayer::extraSize() + sizeof(LayerStack);
}

void PntUndoLayerStack::putBack(LayerStack& stack, bool* deferRedraw) {
    const Ref<LayerStack> held(&stack);
    canvases().replaceStack(stack, canvasIndex());
    if (deferRedraw) {
        *deferRedraw = true;
        return;
    }
    redrawStack(stack);
    if (documentSwitches().compositeCacheEnabled) hostRefreshUI(true, true);
}

void PntUndoLayerStack::undo(bool* deferRedraw) {
    if (!stack() || !hostDocumentValid(canvasIndex())) return;
    LayerStack* const back = savedSlot_ == -1 ? stack() : canvases().stackAt(savedSlot_);
    if (!back) return;
    putBack(*back, deferRedraw);
    undone_ = true;
}

void PntUndoLayerStack::redo(bool* deferRedraw) {
    if (!savedStack_ || !hostDocumentValid(canvasIndex())) return;
    putBack(*savedStack_, deferRedraw);
    undone_ = false;
}

// Records made since on the saved stack undo, or fold themselves away, by the chains of its images.
void PntUndoLayerStack::archive(PntUndoDatabase& database) {
    if (undone_) return;
    if (stack()) stack()->collapseImages();
    const bool needed =
        std::any_of(database.records().begin(), database.records().end(), [&](const auto& record) {
            return record != this && isAbout(record.get(), savedStack_.get());
        });
    if (!needed && savedStack_) savedStack_->collapseImages();
}

}  // namespace brushwork
