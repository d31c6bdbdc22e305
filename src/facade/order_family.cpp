#include "brushwork/order_family.h"

#include "facade/guarded_edit.h"
#include "facade/undo_filing.h"

namespace brushwork {
namespace {

bool isKnown(LayerStack* stack, std::span<const std::int32_t> ids) {
    return stack && !stack::normalizeIds(stack->parts(), ids).empty();
}

}  // namespace

bool OrderFamily::moveLayers(std::span<const std::int32_t> ids, std::int32_t to, std::int32_t group,
                             bool dryRun) {
    LayerStack* const before = state_.current();
    if (!before || !before->moveCheck(ids, to, group)) return false;
    if (dryRun) return true;
    stack::LayerMove move;
    move.toIndex = to;
    move.group = group;
    move.inheritGroupState = true;
    return guardedEdit(state_, activeOne, recordsStack(state_), [&](LayerStack& stack) {
        const bool done = stack.moveLayers(ids, move);
        stack.refreshDisplay(false);
        return done;
    });
}

std::int32_t OrderFamily::makeGroupFrom(std::span<const std::int32_t> ids) {
    if (!isKnown(state_.current(), ids)) return noLayer;
    return guardedEdit(state_, activeOne, recordsStack(state_), [&](LayerStack& stack) {
        const std::int32_t id = stack.makeGroupFrom(ids, true);
        stack.refreshDisplay(false);
        return id;
    });
}

bool OrderFamily::ungroup(std::span<const std::int32_t> ids, bool keepGroup) {
    if (!isKnown(state_.current(), ids)) return false;
    return guardedEdit(state_, activeOne, recordsStack(state_), [&](LayerStack& stack) {
        const bool done = stack.ungroup(ids, keepGroup);
        stack.refreshDisplay(false);
        return done;
    });
}

std::int32_t OrderFamily::duplicateLayer() {
    LayerStack* const before = state_.current();
    if (!before || !before->activeLayer() || before->activeLayer() == before->selectionLayer())
        return noLayer;
    return guardedEdit(state_, activeOne, recordsStack(state_), [](LayerStack& stack) {
        const std::int32_t id = stack.duplicateLayer();
        stack.refreshDisplay(false);
        return id;
    });
}

bool OrderFamily::duplicateLayers(std::span<const std::int32_t> ids,
                                  std::vector<std::int32_t>& newIds) {
    newIds.clear();
    if (!isKnown(state_.current(), ids)) return false;
    return guardedEdit(state_, activeOne, recordsStack(state_), [&](LayerStack& stack) {
        const bool done = stack.duplicateLayers(ids, newIds);
        stack.refreshDisplay(false);
        return done;
    });
}

}  // namespace brushwork
