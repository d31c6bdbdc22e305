// PntUndoLayer: a record about one layer of a canvas.
#pragma once

#include "undo/pnt_undo_ls.h"

namespace brushwork {

class PntUndoLayer : public PntUndoLS {
  protected:
    // An id of -2 is that of the canvas' active layer.
    PntUndoLayer(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                 LayerStack* stack, Layer* layer, const char* primaryName);
    ~PntUndoLayer() override;

  public:
    // The id of a layer of an index, members of groups counted.
    struct ByIndex {
        std::int32_t index;
    };
    [[nodiscard]] static std::int32_t idOf(const LayerStack* stack, ByIndex place);

    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] std::size_t extraSize() const override;
    [[nodiscard]] Ref<PntUndoOper> match(const PntUndoOper& other) override;

    [[nodiscard]] std::int32_t layerId() const { return layerId_; }
    [[nodiscard]] Layer* layer() const { return layer_.get(); }

  private:
    std::int32_t layerId_;
    Ref<Layer> layer_;
};

}  // namespace brushwork
