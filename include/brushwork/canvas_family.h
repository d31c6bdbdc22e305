// CanvasFamily: the canvases of a PaintManager.
//
// A canvas has an index that stays until it is closed. Everywhere -2 means the current one.
#pragma once

#include <cstdint>

#include "brushwork/export.h"
#include "brushwork/il_tile.h"
#include "brushwork/transform_record.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API CanvasFamily {
  public:
    // The index of a new canvas, which is current; it has no layer yet. The two values go to the
    // host's createCanvas; without a host the canvas has pixels of its own. -1: no canvas of that
    // size can be made (1 to 102400 a side).
    std::int32_t newCanvas(std::int32_t width, std::int32_t height, std::intptr_t value1 = 0,
                           std::intptr_t value2 = 0);
    // A copy that shares all pixels, and is not made current. -1 for a wrong index.
    std::int32_t duplicateCanvas(std::int32_t canvas);
    // Resamples all layers. `filter`: 0 nearest, 1 bilinear, 2 bicubic. The canvas is resized.
    // False for sizes as above, and where a layer holds shapes.
    bool scaleCanvas(std::int32_t canvas, float scale, std::int32_t filter);
    // Undo of closing the current one brings it back. False: no such canvas, or a stroke is open.
    bool closeCanvas(std::int32_t canvas);
    [[nodiscard]] std::int32_t currentCanvas() const;  // -1: none
    bool setCurrentCanvas(std::int32_t canvas);
    [[nodiscard]] std::int32_t canvasCount() const;
    // Slots, of which some may be empty.
    [[nodiscard]] std::int32_t canvasCapacity() const;
    [[nodiscard]] bool hasCanvas(std::int32_t canvas) const;

    void setView(std::int32_t canvas, const TransformRecord& view);
    [[nodiscard]] bool view(std::int32_t canvas, TransformRecord& view) const;
    // Between view and layer pixels, in place; an unknown layer means document pixels.
    void viewToLayer(float* x, float* y, std::int32_t layerId = -2) const;
    void layerToView(float* x, float* y, std::int32_t layerId = -2) const;
    // Of a canvas without a host surface. Layers stay where they are.
    bool setCanvasSize(std::int32_t canvas, std::int32_t width, std::int32_t height);
    // So that all layers' pixels lie in it.
    bool resizeToFit(std::int32_t canvas);
    [[nodiscard]] ilTile canvasBounds(std::int32_t canvas) const;

    // Composes what is dirty and hands the surface to the host.
    void present(std::int32_t canvas);
    // The visible pixels: canvasBounds in size, row 0 at the bottom, 4 bytes each. False: a wrong
    // index. `pixels` holds width * height * 4 bytes.
    bool readCanvas(std::int32_t canvas, void* pixels);
    // The flat picture of all layers, without selection tint and checkerboard.
    bool readFlatImage(std::int32_t canvas, void* pixels);
    void refreshDisplay(std::int32_t canvas);

  protected:
    explicit CanvasFamily(FacadeState& state) : state_(state) {}
    CanvasFamily(const CanvasFamily&) = delete;
    CanvasFamily& operator=(const CanvasFamily&) = delete;
    ~CanvasFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
