#include "brushwork/transform_family.h"

#include "document/stack/stack_raster.h"
#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"

namespace brushwork {
namespace {

// Of each plain layer: the members of a group, too.
void recordEach(FacadeState& state, std::int32_t canvas, Layer& layer, PntUndoCombo& combo) {
    if (LayerGroup* const group = layer.asGroup())
        group->eachMember([&](Layer& member) { recordEach(state, canvas, member, combo); });
    else if (Ref<PntUndoStroke> record = recordLayer(state, canvas, layer.id(), false))
        combo.addChild(record.get());
}

}  // namespace

bool TransformFamily::beginTransform(std::span<const std::int32_t> ids, std::int32_t mode,
                                     std::int32_t arg) {
    return guardedEdit(
        state_, activeOne,
        [&](std::int32_t canvas) {
            LayerStack* const stack = state_.stackAt(canvas);
            const Ref<PntUndoCombo> combo(new PntUndoCombo(nullptr, nullptr, nullptr, nullptr,
                                                           nullptr, false, false, "SidCombo"));
            for (Layer* layer : stack::normalizeIds(stack->parts(), ids))
                recordEach(state_, canvas, *layer, *combo);
            if (!combo->children().empty()) fileRecord(combo.get());
        },
        [&](LayerStack& stack) { return stack.beginTransform(ids, mode, arg, true); });
}

bool TransformFamily::updateTransform(const TransformRecord& record) {
    LayerStack* const stack = state_.current();
    if (!stack || !stack->inTransform() || !isPlacement(record)) return false;
    stack->updateTransform(record);
    return true;
}

bool TransformFamily::endTransform(bool keep) {
    LayerStack* const stack = state_.current();
    if (!stack || !stack->inTransform()) return false;
    stack->endTransform(keep);
    state_.scheduleIdle();
    return true;
}

std::int32_t TransformFamily::newTemporaryLayer() {
    LayerStack* const before = state_.current();
    Layer* const active = before ? before->activeLayer() : nullptr;
    if (!active || active == before->selectionLayer() || !stack::rasterOf(active)) return noLayer;
    const std::int32_t ids[] = {active->id()};
    return guardedEdit(
        state_, activeOne, [&](std::int32_t canvas) { recordStackWithLayers(state_, canvas, ids); },
        [](LayerStack& stack) {
            const std::int32_t id = stack.newTemporaryLayer();
            stack.refreshDisplay(false);
            return id;
        });
}

}  // namespace brushwork
