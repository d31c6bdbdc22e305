// guardedEdit: the routine around every mutation.
//
//     return guardedEdit(state_, canvas, record, [&](LayerStack& stack) {
//         return stack.mergeDown(id, below);
//     });
//
// Commits an open multi-layer transform, ends a live fill, puts modal brush modes aside, makes and
// files the record, looks the stack up again (filing may have exchanged it), does the work, and
// schedules idle work. Without that canvas nothing is done and the answer is `T{}`, or -1 for
// numbers.
#pragma once

#include <type_traits>
#include <utility>

#include "facade/facade_state.h"

namespace brushwork {

class EditScope {
  public:
    EditScope(FacadeState& state, std::int32_t canvas);
    EditScope(const EditScope&) = delete;
    EditScope& operator=(const EditScope&) = delete;
    ~EditScope();

    // Null: there is no such canvas. Asked again after the record was filed.
    [[nodiscard]] LayerStack* stack() const;
    [[nodiscard]] std::int32_t canvas() const { return canvas_; }

  private:
    FacadeState& state_;
    std::int32_t canvas_;
    bool entered_ = false;
};

// Makes a layer the active one for as long as it lives: tools paint on that.
class ActiveFor {
  public:
    ActiveFor(LayerStack& stack, Layer& layer) : stack_(stack), before_(stack.activeLayer()) {
        if (before_ != &layer) activate(layer);
    }
    ActiveFor(const ActiveFor&) = delete;
    ActiveFor& operator=(const ActiveFor&) = delete;
    ~ActiveFor() {
        if (before_ && before_ != stack_.activeLayer()) activate(*before_);
    }

  private:
    void activate(Layer& layer) {
        if (&layer == stack_.selectionLayer())
            stack_.makeSelectionActive();
        else
            stack_.setActiveIndex(stack_.indexOf(&layer, true), false, false, true);
    }

    LayerStack& stack_;
    Ref<Layer> before_;
};

template <class T>
constexpr T nothingDone() {
    if constexpr (std::is_same_v<T, std::int32_t>)
        return -1;
    else
        return T();
}

// `record` is called with the canvas index while undo is active.
template <class Record, class Work>
auto guardedEdit(FacadeState& state, std::int32_t canvas, const Record& record, const Work& work) {
    using Result = std::invoke_result_t<Work, LayerStack&>;
    const EditScope scope(state, canvas);
    if (!scope.stack()) return nothingDone<Result>();
    if (state.undo.isActive()) record(scope.canvas());
    LayerStack* const stack = scope.stack();
    return stack ? work(*stack) : nothingDone<Result>();
}

// For edits without a record.
template <class Work>
auto guardedEdit(FacadeState& state, std::int32_t canvas, const Work& work) {
    return guardedEdit(
        state, canvas, [](std::int32_t) {}, work);
}

}  // namespace brushwork
