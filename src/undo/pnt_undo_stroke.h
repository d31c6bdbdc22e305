// PntUndoStroke: an edit of a layer's pixels, by a stroke or any other tool.
//
// The record puts a new child in front of each of the layer's two images, so that what is painted
// next goes into the children. Undo shows the children's sources again, redo the children. Records
// on one layer form a chain of images, each of which holds the pages that its edit changed.
#pragma once

#include "image/smart/il_smart_image.h"
#include "undo/pnt_undo_layer.h"

namespace brushwork {

class PntUndoStroke final : public PntUndoLayer {
  public:
    // Making the record changes the layer: it now shows the children.
    PntUndoStroke(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                  LayerStack* stack, Layer* layer, ilImage* color, ilImage* stencil,
                  const char* primaryName);
    PntUndoStroke(UndoCanvases& canvases, std::int32_t canvas, ByIndex place, LayerStack* stack,
                  Layer* layer, ilImage* color, ilImage* stencil, const char* primaryName);

  protected:
    ~PntUndoStroke() override;

  public:
    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;
    [[nodiscard]] std::size_t objectSize() const override;
    // Folds the children into those of the next record on the layer.
    void archive(PntUndoDatabase& database) override;

    [[nodiscard]] ilSmartImage* refColor() const { return refColor_.get(); }
    [[nodiscard]] ilSmartImage* newColor() const { return newColor_.get(); }
    [[nodiscard]] ilSmartImage* newStencil() const { return newStencil_.get(); }
    [[nodiscard]] bool undone() const { return undone_; }

  private:
    enum class Swap { Fresh, Back };
    void keepForRedo();
    // False, with nothing done: another stack stands in the slot.
    bool swapIn(ilImage* color, ilImage* stencil, std::int32_t x, std::int32_t y, Swap swap);

    Ref<ilSmartImage> refColor_, refStencil_;
    Ref<ilSmartImage> newColor_, newStencil_;
    // What redo shows in place of the children: a tool may have given the layer other images.
    Ref<ilSmartImage> redoColor_, redoStencil_;
    float undoX_ = 0.0f, undoY_ = 0.0f;
    float redoX_ = 0.0f, redoY_ = 0.0f;
    bool undone_ = false;
};

}  // namespace brushwork
