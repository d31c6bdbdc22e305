// SelectionFamily: what is selected. A selection is an image of one channel; 255 is selected.
// Boxes, masks and distances in document pixels unless said. What can't be done, and all of it
// within a stroke, is ignored.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "brushwork/export.h"
#include "brushwork/il_tile.h"
#include "brushwork/image_ref.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API SelectionFamily {
  public:
    void selectAll();
    void selectNone();  // painting is not restricted
    void invertSelection();
    // Replaces the selection: 0, adds: 1, takes away: 2. Document pixels.
    void selectRegion(const ilTile& box, std::int32_t how = 0);
    void selectMask(const ImageRef& mask, float x, float y, std::int32_t how = 0);
    // The alpha of a layer.
    void selectFromLayer(std::int32_t id, std::int32_t how = 0);
    // View points, x then y.
    void selectPolygon(std::span<const float> points, std::int32_t how = 0);
    // The selection becomes the image (of one channel) at a place.
    void loadMaskImage(const ImageRef& mask, float x, float y);
    void moveSelection(float dx, float dy);
    // Strokes and fills then paint the selection itself.
    void makeSelectionActive();
    // The tint that shows it: red, green, blue, alpha and opacity, 0 to 1. No undo record.
    void setSelectionColor(const std::array<float, 4>& color, float opacity = 0.5f);
    [[nodiscard]] bool hasSelection() const;
    // False for an empty one.
    bool selectionBounds(ilTile& box) const;
    [[nodiscard]] ImageRef selectionImage() const;

  protected:
    explicit SelectionFamily(FacadeState& state) : state_(state) {}
    SelectionFamily(const SelectionFamily&) = delete;
    SelectionFamily& operator=(const SelectionFamily&) = delete;
    ~SelectionFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
