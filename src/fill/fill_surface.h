// FillSurface: what a flood reads and writes, pixel by pixel, over an image of any kind.
//
//     const std::unique_ptr<FillSurface> surface = makeFillSurface(image);
//     if (surface->get(x, y) == target) surface->putSpan(left, right, y, color);
//
// Pixels are words: the value of 1 channel, or red in the lowest byte to alpha in the highest.
// A place outside the image reads as its fill. Nothing is reported; what can't be had reads as the
// fill and isn't written.
//
// For one thread. A surface may keep a page at hand between calls: whoever writes to its image some
// other way calls forget() before the next read.
#pragma once

#include <cstdint>
#include <memory>

#include "brushwork/il_tile.h"
#include "image/chain/il_image.h"

namespace brushwork {

// Colours from 0 to 1 as a word; each channel is cut off after adding a half.
[[nodiscard]] std::uint32_t packColor(float red, float green, float blue, float alpha);

class FillSurface {
  public:
    virtual ~FillSurface() = default;

    [[nodiscard]] virtual bool isGrey() const = 0;
    [[nodiscard]] virtual std::uint32_t get(std::int32_t x, std::int32_t y) = 0;
    virtual void put(std::int32_t x, std::int32_t y, std::uint32_t value) = 0;
    // From `left` to `right`, both inside.
    virtual void putSpan(std::int32_t left, std::int32_t right, std::int32_t y,
                         std::uint32_t value) = 0;
    // Fills the box but for what lies in `keepOut`, and makes the value that of all places that
    // were never written. What shows in `keepOut` stays.
    virtual void fillOutside(const ilTile& box, const ilTile& keepOut, std::uint32_t value) = 0;
    virtual void forget() {}
};

// Over an image of 1 or 4 byte channels, which is kept alive; null for others and without memory.
[[nodiscard]] std::unique_ptr<FillSurface> makeFillSurface(ilImage& image);

}  // namespace brushwork
