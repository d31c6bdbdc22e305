#include "undo/pnt_undo_layer.h"

namespace brushwork {
namespace {

std::int32_t resolved(const UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId) {
    if (layerId != activeOne) return layerId;
    const LayerStack* const stack = canvases.stackAt(canvas);
    return stack ? stack->activeId() : noLayer;
}

}  // namespace

PntUndoLayer::PntUndoLayer(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                           LayerStack* stack, Layer* layer, const char* primaryName)
    : PntUndoLS(canvases, canvas, stack, primaryName),
      layerId_(resolved(canvases, canvasIndex(), layerId)),
      layer_(layer) {
    addKind("SidLayer");
}

PntUndoLayer::~PntUndoLayer() = default;

std::int32_t PntUndoLayer::idOf(const LayerStack* stack, ByIndex place) {
    return stack ? stack->idOfIndex(place.index, true) : noLayer;
}

std::size_t PntUndoLayer::objectSize() const {
    return sizeof(PntUndoLayer) + extraSize();
}

std::size_t PntUndoLayer::extraSize() const {
    return PntUndoLS::extraSize() + sizeof(Layer);
}

Ref<PntUndoOper> PntUndoLayer::match(const PntUndoOper& other) {
    const auto* const same = dynamic_cast<const PntUndoLayer*>(&other);
    if (!PntUndoLS::match(other) || !same || !same->layer_ || !layer_) return {};
    if (same->layer_->id() != layer_->id()) return {};
    return Ref<PntUndoOper>(this);
}

}  // namespace brushwork
