// PixelFamily: the pixels of a layer or a canvas at once.
//
// Of the layer with that id, or of the active one (-2). Nothing happens to groups, layers of
// shapes and locked layers, for unknown ids and within a stroke; nor to masks by applyConvolve and
// shrinkWrap, to others by invertMask.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/export.h"
#include "brushwork/il_tile.h"
#include "brushwork/image_ref.h"
#include "brushwork/progress.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API PixelFamily {
  public:
    // The only layer of a canvas is filled with the background's colour instead, while nothing is
    // selected.
    void clearLayer(bool present = true);
    void fillLayer(const std::array<float, 4>& color);  // red, green, blue, alpha, 0 to 1
    void fillWithImage(const ImageRef& image);
    void clearRegion(const ilTile& box, std::int32_t id = -2);  // layer pixels
    void invertMask(std::int32_t id = -2);
    void flipLayer(bool horizontal, bool vertical, std::int32_t id = -2, bool bakeFirst = true);
    void rotateLayer(bool other, std::int32_t id = -2);  // by 90 degrees about its middle
    void flipCanvas(bool horizontal, bool vertical);
    // By 90 degrees, with the canvas. The progress is told of each layer, on this thread.
    void rotateCanvas(bool other, znUtil::Progress* progress = nullptr);
    struct ConvolveParams {
        float strength = 5.0f;               // of sharpening, in tenths, -1000 to 1000
        float detail = 1.5f, radius = 3.0f;  // pixels, 0 to 1000: of sharpening, of blurring
        bool sharpen = false;
    };
    // As setConvolve set them.
    [[nodiscard]] ConvolveParams convolveParams(bool sharpen = false) const;
    void applyConvolve(const ConvolveParams& params, std::int32_t id = -2);
    // A halo of the colour around what is drawn: blur in pixels, tolerance 0 to 1.
    void shrinkWrap(const std::array<float, 4>& color, float blur, float tolerance);
    // A pixel as four bytes, red lowest, premultiplied: of a layer in its own pixels, and of the
    // visible canvas in document pixels. False outside, and for a wrong id.
    bool layerPixel(std::int32_t id, std::int32_t x, std::int32_t y, std::uint32_t* pixel) const;
    bool canvasPixel(std::int32_t x, std::int32_t y, std::uint32_t* pixel);
    // The layer's pixels as they are; shared, not copied, until either is written to.
    [[nodiscard]] ImageRef layerImage(std::int32_t id) const;
    [[nodiscard]] ImageRef layerStencil(std::int32_t id) const;

  protected:
    explicit PixelFamily(FacadeState& state) : state_(state) {}
    PixelFamily(const PixelFamily&) = delete;
    PixelFamily& operator=(const PixelFamily&) = delete;
    ~PixelFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
