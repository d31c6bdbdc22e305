#include "undo/pnt_undo_shape_array_delete.h"

#include <algorithm>

#include "document/layer/shape_layer.h"
#include "foundation/host/host_canvas.h"
#include "undo/canvas_redraw.h"

namespace brushwork {
namespace {

std::vector<ShapeUndoEntry> entriesFor(const UndoCanvases& canvases,
                                       std::span<const std::int32_t> shapeIds) {
    std::vector<ShapeUndoEntry> entries;
    for (const std::int32_t id : shapeIds) {
        UndoCanvases::ShapePlace place;
        if (!canvases.locateShape(id, place)) continue;
        entries.push_back({id, place.canvas, place.layerIndex, Ref<LayerStack>(place.stack),
                           Ref<Layer>(place.layer), place.shapeIndex, Ref<Shape>(place.shape)});
    }
    return entries;
}

}  // namespace

PntUndoShapeArrayDelete::PntUndoShapeArrayDelete(UndoCanvases& canvases,
                                                 std::span<const std::int32_t> shapeIds,
                                                 const char* primaryName)
    : PntUndoShapeArray(canvases, entriesFor(canvases, shapeIds), primaryName) {
    addKind("SidShapeArrayDelete");
}

PntUndoShapeArrayDelete::~PntUndoShapeArrayDelete() = default;

std::size_t PntUndoShapeArrayDelete::objectSize() const {
    return sizeof(PntUndoShapeArrayDelete) + extraSize();
}

// Shapes go back from the lowest place up and leave from the top down, so that places hold.
void PntUndoShapeArrayDelete::applyEntries(bool restore) {
    std::vector<bool> marked(static_cast<std::size_t>(std::max(canvases().slotCount(), 0)));
    const bool valid = std::all_of(entries_.begin(), entries_.end(), [](const auto& entry) {
        return hostDocumentValid(entry.canvasIndex);
    });
    if (!valid) return;
    std::vector<const ShapeUndoEntry*> order;
    for (const ShapeUndoEntry& entry : entries_) order.push_back(&entry);
    std::stable_sort(order.begin(), order.end(), [restore](const auto* a, const auto* b) {
        return restore ? a->shapeIndex < b->shapeIndex : a->shapeIndex > b->shapeIndex;
    });
    for (const ShapeUndoEntry* entry : order) {
        ShapeLayer* const layer = ShapeLayer::from(entry->layer.get());
        if (!layer || !entry->shape) continue;
        if (restore)
            layer->addShape(*entry->shape, entry->shapeIndex - 1);
        else
            layer->removeShape(*entry->shape);
        shapesMoved(canvases(), entry->canvasIndex, *layer);
        const auto canvas = static_cast<std::size_t>(entry->canvasIndex);
        if (entry->canvasIndex >= 0 && canvas < marked.size()) marked[canvas] = true;
    }
    for (std::size_t canvas = 0; canvas < marked.size(); ++canvas)
        if (marked[canvas])
            if (LayerStack* const stack = canvases().stackAt(static_cast<std::int32_t>(canvas)))
                stack->refreshDisplay(true);
}

void PntUndoShapeArrayDelete::undo(bool*) {
    applyEntries(true);
}

void PntUndoShapeArrayDelete::redo(bool*) {
    applyEntries(false);
}

void PntUndoShapeArrayDelete::archive(PntUndoDatabase&) {
    for (ShapeUndoEntry& entry : entries_) entry = ShapeUndoEntry();
}

}  // namespace brushwork
