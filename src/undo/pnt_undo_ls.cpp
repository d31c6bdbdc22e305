#include "undo/pnt_undo_ls.h"

namespace brushwork {

PntUndoLS::PntUndoLS(UndoCanvases& canvases, std::int32_t canvas, LayerStack* stack,
                     const char* primaryName)
    : PntUndoOper(primaryName),
      canvases_(canvases),
      canvas_(canvas == activeOne ? canvases.currentIndex() : canvas),
      stack_(stack) {
    addKind("SidLS");
}

PntUndoLS::~PntUndoLS() = default;

std::size_t PntUndoLS::objectSize() const {
    return sizeof(PntUndoLS) + extraSize();
}

std::size_t PntUndoLS::extraSize() const {
    return sizeof(LayerStack);
}

Ref<PntUndoOper> PntUndoLS::match(const PntUndoOper& other) {
    const auto* const same = dynamic_cast<const PntUndoLS*>(&other);
    if (!same || same->canvas_ != canvas_) return {};
    return Ref<PntUndoOper>(this);
}

}  // namespace brushwork
