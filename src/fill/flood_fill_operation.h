// FloodFillOperation: a flood with hard edges that writes a colour directly, from one image into
// another or into itself. The magic wand writes into a selection with it.
//
//     FloodFillOperation wand(x, y, dx, dy, 0.1f, {1, 1, 1, 1}, *layer, *selection, false, true);
//     wand.fill(x, y, left, top, right, bottom, false);
//
// Every channel of a pixel must be within the tolerance, that included. Pixels of the destination
// that have the fill colour already aren't seeds of further spans, so that a colour like the
// target's doesn't fill for ever, and what was filled before bounds a flood.
#pragma once

#include <cstdint>
#include <vector>

#include "fill/fill_surface.h"
#include "fill/flood_fill.h"

namespace brushwork {

class FloodFillOperation : public FloodFill {
  public:
    // 0 to 1 a channel.
    struct Color {
        float red, green, blue, alpha;
    };

    // The target is the source's pixel at (x, y). A source pixel's place in the destination is
    // (offsetX, offsetY) further. The tolerance is 0 to 1. A grey surface takes alpha for its
    // value. The surfaces outlive the operation; over one image they are one and the same.
    FloodFillOperation(std::int32_t x, std::int32_t y, std::int32_t offsetX, std::int32_t offsetY,
                       float tolerance, const Color& color, FillSurface& source,
                       FillSurface& destination, bool sourceIsGrey, bool destinationIsGrey);
    // A surface that is filled itself.
    FloodFillOperation(std::int32_t x, std::int32_t y, float tolerance, const Color& color,
                       FillSurface& surface, bool isGrey);

    // With `flag`, a fill that touched an edge of the clip goes on without end: all of the
    // destination but the box that was filled becomes the colour, from the clip's pages outward
    // through what was never written.
    void fill(std::int32_t x, std::int32_t y, std::int32_t left, std::int32_t top,
              std::int32_t right, std::int32_t bottom, bool flag) override;
    [[nodiscard]] bool inside(std::int32_t x, std::int32_t y) override;
    void setPixel(std::int32_t x, std::int32_t y) override;
    void setSpan(std::int32_t left, std::int32_t right, std::int32_t y) override;

    // Whether the latest fill went on outside the clip.
    [[nodiscard]] bool reachedEdge() const { return reachedEdge_; }

  private:
    struct Seed {
        std::int32_t x, y;
    };

    [[nodiscard]] std::uint32_t fillValue() const;
    [[nodiscard]] bool isFilled(std::int32_t x, std::int32_t y);
    void fillSpan(const Seed& seed);
    void seedRow(std::int32_t y);
    void fillOutside();

    std::uint32_t target_ = 0;
    std::int32_t offsetX_, offsetY_;
    std::int32_t tolerance_;
    std::uint32_t fillColor_;
    FillSurface& source_;
    FillSurface& destination_;
    std::int32_t right_ = 0, left_ = 0;  // of the span at hand
    bool sourceIsGrey_, destinationIsGrey_;
    bool reachedEdge_ = false;
    std::vector<Seed> seeds_;
};

}  // namespace brushwork
