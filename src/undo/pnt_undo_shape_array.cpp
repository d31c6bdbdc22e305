#include "undo/pnt_undo_shape_array.h"

namespace brushwork {

PntUndoShapeArray::PntUndoShapeArray(UndoCanvases& canvases, std::vector<ShapeUndoEntry> entries,
                                     const char* primaryName)
    : PntUndoOper(primaryName), entries_(std::move(entries)), canvases_(canvases) {
    addKind("SidShapeArray");
}

PntUndoShapeArray::~PntUndoShapeArray() = default;

std::size_t PntUndoShapeArray::objectSize() const {
    return sizeof(PntUndoShapeArray) + extraSize();
}

std::size_t PntUndoShapeArray::extraSize() const {
    constexpr std::size_t overhead = 1536;
    return entries_.size() * sizeof(ShapeUndoEntry) + overhead;
}

Ref<PntUndoOper> PntUndoShapeArray::match(const PntUndoOper& other) {
    const auto* const same = dynamic_cast<const PntUndoShapeArray*>(&other);
    if (!same || !(same->entries_ == entries_)) return {};
    return Ref<PntUndoOper>(this);
}

}  // namespace brushwork
