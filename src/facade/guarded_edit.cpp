#include "facade/guarded_edit.h"

#include "document/stack/stack_fill.h"

namespace brushwork {

EditScope::EditScope(FacadeState& state, std::int32_t canvas)
    : state_(state), canvas_(state.canvases.resolve(canvas)) {
    LayerStack* const stack = state_.stackAt(canvas_);
    if (!stack || state_.stroke.open) return;
    stack->closeTransform();
    stack->endFill();
    state_.modal.enter();
    entered_ = true;
}

EditScope::~EditScope() {
    if (!entered_) return;
    state_.modal.leave();
    state_.scheduleIdle();
}

LayerStack* EditScope::stack() const {
    return entered_ ? state_.stackAt(canvas_) : nullptr;
}

}  // namespace brushwork
