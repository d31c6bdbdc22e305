#include "brushwork/undo_family.h"

#include <algorithm>

#include "brushwork/pnt_undo_database.h"
#include "facade/undo_filing.h"
#include "foundation/host/host_calls.h"
#include "foundation/services/log.h"

namespace brushwork {
namespace {

constexpr std::int32_t layerLogs = 0x2016;
// All are dropped at once: further ones would only take time and memory until then.
constexpr std::int32_t mostSnapshots = 1000;

}  // namespace

void UndoFamily::clearUndo() {
    if (!state_.stroke.open) clearUndoRecords(state_);
}

void UndoFamily::snapshotAndClear(std::int32_t count) {
    if (state_.stroke.open) return;
    if (state_.undo.isActive() && state_.current())
        for (std::int32_t n = 0; n < std::min(count, mostSnapshots); ++n)
            recordStack(state_, activeOne, true);
    clearUndoRecords(state_);
}

bool UndoFamily::noteStackSwitch(std::int32_t slot) {
    LayerStack* const stack = state_.current();
    if (!stack || !state_.stackAt(slot) || !state_.undo.isActive() || !undoDatabase()) return false;
    const Ref<PntUndoLayerStack> record(
        new PntUndoLayerStack(state_, activeOne, PntUndoLayer::ByIndex{stack->activeIndex(true)},
                              stack, stack->activeLayer(), slot, "SidLayerStack"));
    fileRecord(record.get());
    return true;
}

void UndoFamily::lockUndo(bool locked) {
    state_.undo.locked = locked;
}

bool UndoFamily::undoLocked() const {
    return state_.undo.locked;
}

void UndoFamily::setUndoEnabled(bool enabled) {
    state_.undo.enabled = enabled;
}

bool UndoFamily::undoEnabled() const {
    return state_.undo.enabled;
}

bool UndoFamily::undoActive() const {
    return state_.undo.isActive();
}

bool UndoFamily::recordCanvas(std::int32_t canvas) {
    return !state_.stroke.open && recordStack(state_, canvas, true);
}

void UndoFamily::dump() const {
    if (hostDebugLevel() != layerLogs) return;
    log("========== PaintManager [begin] ==========\n");
    for (std::size_t n = 0; n < state_.canvases.slots.size(); ++n) {
        LayerStack* const stack = state_.canvases.slots[n].get();
        if (!stack) continue;
        log("===== LayerStack [%d] =====\n", static_cast<int>(n));
        stack->dump();
    }
    log("========== PaintManager [end] ===========\n");
}

void UndoFamily::dumpHistory() const {
    if (const PntUndoDatabase* const database = undoDatabase()) database->dump();
}

}  // namespace brushwork
