// Undo records of edits, made and filed before the edit.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "brushwork/ref.h"
#include "facade/facade_state.h"
#include "undo/pnt_undo_combo.h"
#include "undo/pnt_undo_layer_stack.h"
#include "undo/pnt_undo_stroke.h"

namespace brushwork {

// Nothing is filed without a database. Null records are left out.
void fileRecord(PntUndoOper* record);
// A copy of the stack goes into the slot, and the record keeps the one from before. Null while undo
// is off or the canvas isn't there.
Ref<PntUndoLayerStack> recordStack(FacadeState& state, std::int32_t canvas, bool file);
// The same, filed, for guardedEdit.
inline auto recordsStack(FacadeState& state) {
    return [&state](std::int32_t canvas) { recordStack(state, canvas, true); };
}
// Children go in front of the layer's images. Null while undo is off or there is no such layer.
Ref<PntUndoStroke> recordLayer(FacadeState& state, std::int32_t canvas, std::int32_t layerId,
                               bool file);
// The pixels of the layers, and then the stack around them, as one record.
void recordStackWithLayers(FacadeState& state, std::int32_t canvas,
                           std::span<const std::int32_t> layerIds);
// The same for all plain layers that are meant, groups' members too.
void recordStackWithLayers(FacadeState& state, std::int32_t canvas,
                           const std::function<bool(Layer&)>& meant);
void clearUndoRecords(FacadeState& state);

}  // namespace brushwork
