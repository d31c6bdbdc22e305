// PntUndoLS: a record about one canvas.
#pragma once

#include "brushwork/pnt_undo_oper.h"
#include "undo/undo_canvases.h"

namespace brushwork {

class PntUndoLS : public PntUndoOper {
  protected:
    // A canvas of -2 is the current one. The facade outlives its records.
    PntUndoLS(UndoCanvases& canvases, std::int32_t canvas, LayerStack* stack,
              const char* primaryName);
    ~PntUndoLS() override;

  public:
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] std::size_t extraSize() const override;
    [[nodiscard]] Ref<PntUndoOper> match(const PntUndoOper& other) override;

    [[nodiscard]] std::int32_t canvasIndex() const { return canvas_; }
    // The stack that was live when the record was made.
    [[nodiscard]] LayerStack* stack() const { return stack_.get(); }

  protected:
    [[nodiscard]] UndoCanvases& canvases() const { return canvases_; }

  private:
    UndoCanvases& canvases_;
    std::int32_t canvas_;
    Ref<LayerStack> stack_;
};

}  // namespace brushwork
