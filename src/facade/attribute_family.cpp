#include "brushwork/attribute_family.h"

#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"

namespace brushwork {
namespace {

// Of the canvas that holds the layer.
template <class Work>
void onLayer(FacadeState& state, std::int32_t id, const Work& work) {
    std::int32_t canvas = noLayer;
    if (!state.canvases.stackOfLayer(id, &canvas)) return;
    guardedEdit(state, canvas, [&](LayerStack& stack) { work(stack); });
}

}  // namespace

void AttributeFamily::setVisible(std::int32_t id, bool visible) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setVisible(id, visible); });
}

void AttributeFamily::setOpacity(std::int32_t id, float opacity) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setOpacity(id, opacity); });
}

void AttributeFamily::setBlendMode(std::int32_t id, std::int32_t mode) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setBlendMode(id, mode); });
}

void AttributeFamily::setLocked(std::int32_t id, bool locked) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setLocked(id, locked); });
}

void AttributeFamily::setName(std::int32_t id, const znString::IString& name) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setName(id, name); });
}

void AttributeFamily::setPosition(std::int32_t id, float x, float y, bool record,
                                  bool unrestricted) {
    std::int32_t canvas = noLayer;
    if (!isPlace(x, y) || !state_.canvases.stackOfLayer(id, &canvas)) return;
    guardedEdit(
        state_, canvas,
        [&](std::int32_t index) {
            // Of groups and layers of shapes the place alone isn't kept.
            if (record && !recordLayer(state_, index, id, true)) recordStack(state_, index, true);
        },
        [&](LayerStack& stack) { stack.setPosition(id, x, y, true, unrestricted); });
}

void AttributeFamily::setLabelColor(std::int32_t id, std::uint32_t label) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setLabelColor(id, label); });
}

void AttributeFamily::setEnabled(std::int32_t id, bool enabled) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setEnabled(id, enabled); });
}

void AttributeFamily::setStencilActive(std::int32_t id, bool active) {
    onLayer(state_, id, [&](LayerStack& stack) { stack.setStencilActive(id, active); });
}

void AttributeFamily::setLockAlpha(bool lock) {
    state_.brush.lockAlpha = lock ? 1 : 0;
}

void AttributeFamily::setExpanded(std::int32_t id, bool expanded) {
    const LayerStack* const stack = state_.canvases.stackOfLayer(id, nullptr);
    if (LayerGroup* const group = stack ? stack->groupById(id) : nullptr)
        group->setExpanded(expanded);
}

void AttributeFamily::setBackground(const std::array<float, 4>& color, std::int32_t canvas) {
    guardedEdit(state_, canvas, [&](LayerStack& stack) { stack.setBackground(color); });
}

void AttributeFamily::setMaskColor(const std::array<float, 4>& color) {
    guardedEdit(state_, activeOne, [&](LayerStack& stack) { stack.setMaskColor(color); });
}

void AttributeFamily::setMaskOpacity(float opacity) {
    guardedEdit(state_, activeOne, [&](LayerStack& stack) { stack.setMaskOpacity(opacity); });
}

void AttributeFamily::setThumbnailSize(std::int32_t id, std::int32_t width, std::int32_t height) {
    const LayerStack* const stack = state_.canvases.stackOfLayer(id, nullptr);
    if (Layer* const layer = stack ? stack->layerById(id) : nullptr)
        layer->setThumbnailSize(width, height);
}

}  // namespace brushwork
