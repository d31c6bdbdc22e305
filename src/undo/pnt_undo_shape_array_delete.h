// PntUndoShapeArrayDelete: shapes that left their layers together.
#pragma once

#include <span>

#include "undo/pnt_undo_shape_array.h"

namespace brushwork {

class PntUndoShapeArrayDelete final : public PntUndoShapeArray {
  public:
    // Made before they leave. Ids of no shape have no entry.
    PntUndoShapeArrayDelete(UndoCanvases& canvases, std::span<const std::int32_t> shapeIds,
                            const char* primaryName);

  protected:
    ~PntUndoShapeArrayDelete() override;

  public:
    // Both redraw at once, whatever the flag, and do nothing if one of the canvases is gone.
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;
    void archive(PntUndoDatabase& database) override;

  private:
    void applyEntries(bool restore);
};

}  // namespace brushwork
